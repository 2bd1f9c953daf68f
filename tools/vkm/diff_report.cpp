#include "diff_report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "map/json_text.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

std::string Short(double value) {
    std::string text;
    map::AppendJsonReal(text, value);
    return text;
}

std::string Place(map::Point point) {
    return Short(point.x) + " " + Short(point.y);
}

constexpr std::string_view withoutCode = "without a code";

// What distinguishes a side, in words; empty when it has no code.
std::string Described(const map::ChangeSide& side, client::TextDecoder& decoder) {
    if (side.text != nullptr) {
        std::string text;
        map::AppendJsonText(text, decoder.Decode(side.words));
        return text + " K=" + std::to_string(side.text->code) + " H=" + Short(side.text->height) +
               " U=" + Short(side.text->rotation);
    }
    std::string text = side.code.empty() ? std::string() : "K=" + decoder.Decode(side.code);
    if (side.sign == nullptr) return text;
    if (!text.empty()) text += " ";
    return text + "S=" + std::to_string(side.sign->symbol) + " M=" + Short(side.sign->scale) +
           " U=" + Short(side.sign->rotation);
}

std::string DescribedOrNot(const map::ChangeSide& side, client::TextDecoder& decoder) {
    const std::string text = Described(side, decoder);
    return text.empty() ? TranslatedText(withoutCode) : text;
}

std::string Where(const map::ChangeSide& side) {
    const std::string first = Place(side.points.front());
    const std::string last = Place(side.points.back());
    if (side.points.size() == 1) return Filled("at {}", {first});
    if (side.points.size() == 2) return Filled("from {} to {}", {first, last});
    return Filled("from {} over {} points to {}", {first, std::to_string(side.points.size() - 2), last});
}

// "added line", as the table of translations has it.
std::string PhraseOf(size_t kind, size_t thing) {
    return std::string(map::changeNames[kind]) + " " + std::string(map::thingNames[thing]);
}

double Distance(map::Point a, map::Point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

void DiffReport::Take(const map::Change& change) {
    any = true;
    ++counts[static_cast<size_t>(change.kind)][static_cast<size_t>(change.thing)];
    if (features != nullptr) WriteFeature(change);
    if (json) {
        WriteJson(change);
    } else {
        WriteText(change);
    }
}

void DiffReport::WriteJson(const map::Change& change) {
    const auto side = [](const std::optional<map::ChangeSide>& one, client::TextDecoder& decoder) {
        return one ? map::SideJson(*one, decoder) : std::string("null");
    };
    const auto line = [](const std::optional<map::ChangeSide>& one) {
        return one ? std::to_string(one->fileLine) : std::string("null");
    };
    std::string text = R"({"change":")";
    text.append(map::changeNames[static_cast<size_t>(change.kind)])
        .append(R"(","kind":")")
        .append(map::thingNames[static_cast<size_t>(change.thing)])
        .append(R"(","layer":)")
        .append(std::to_string(change.layer))
        .append(R"(,"old":)")
        .append(side(change.old, oldDecoder))
        .append(R"(,"new":)")
        .append(side(change.now, newDecoder))
        .append(R"(,"oldLine":)")
        .append(line(change.old))
        .append(R"(,"newLine":)")
        .append(line(change.now))
        .append("}\n");
    output.Write(text);
}

void DiffReport::WriteText(const map::Change& change) {
    const map::ChangeSide& shown = change.now ? *change.now : *change.old;
    std::string text =
        TranslatedText(PhraseOf(static_cast<size_t>(change.kind), static_cast<size_t>(change.thing))) +
        Filled(", layer {}, ", {std::to_string(change.layer)}) + Where(shown) + ": ";
    if (change.old) text += DescribedOrNot(*change.old, oldDecoder);
    if (change.kind == map::ChangeKind::moved) {
        const double distance = Distance(change.old->points[0], change.now->points[0]);
        text += Filled(" by {} m", {Short(std::round(distance * 1e4) / 1e4)});
    } else if (change.old && change.now) {
        text += " -> ";
    }
    if (change.now && change.kind != map::ChangeKind::moved) text += DescribedOrNot(*change.now, newDecoder);
    text += " (";
    if (change.old) text += Filled("old line {}", {std::to_string(change.old->fileLine)});
    if (change.old && change.now) text += ", ";
    if (change.now) text += Filled("new line {}", {std::to_string(change.now->fileLine)});
    output.Write(text + ")\n");
}

// The layers have the order of the things.
void DiffReport::AddTo(FeatureFile& file) {
    constexpr StyledValue colours[] = {
        {"added", "30,150,60"}, {"removed", "200,30,30"}, {"changed", "40,80,200"}, {"moved", "40,80,200"}};
    features = &file;
    for (const std::string_view thing : map::thingNames)
        file.AddLayer(std::string(thing) + "s", thing == "line", "change", colours);
}

void DiffReport::WriteFeature(const map::Change& change) {
    std::string members = "\"change\":\"" + std::string(map::changeNames[static_cast<size_t>(change.kind)]) +
                          "\",\"layer\":" + std::to_string(change.layer);
    const auto add = [&](const char* name, const std::optional<map::ChangeSide>& side,
                         client::TextDecoder& decoder) {
        const std::string member = std::string(",\"") + name;
        if (!side) {
            members += member + "\":null" + member + "_line\":null";
            return;
        }
        members += member + "\":";
        const std::string text = Described(*side, decoder);
        map::AppendJsonText(members, text.empty() ? withoutCode : text);
        members += member + "_line\":" + std::to_string(side->fileLine);
    };
    add("old", change.old, oldDecoder);
    add("new", change.now, newDecoder);
    const std::vector<map::Point>& points = change.now ? change.now->points : change.old->points;
    features->Add(static_cast<size_t>(change.thing), points, members);
}

void DiffReport::WriteTotals() {
    if (json) return;
    std::string text;
    for (size_t kind = 0; kind < counts.size(); ++kind) {
        for (size_t thing = 0; thing < counts[kind].size(); ++thing) {
            if (counts[kind][thing] == 0) continue;
            const std::string count = std::to_string(counts[kind][thing]);
            const std::string phrase = PhraseOf(kind, thing);
            const std::string translated = TranslatedText(phrase);
            if (!text.empty()) text += ", ";
            // Other languages have more forms for numbers than one and many.
            if (translated != phrase) {
                text += translated + ": " + count;
                continue;
            }
            text.append(count + " ").append(map::thingNames[thing]).append(count == "1" ? " " : "s ");
            text.append(map::changeNames[kind]);
        }
    }
    output.Write((text.empty() ? Translated("no changes") : text) + "\n");
}

}  // namespace vemrado::tools
