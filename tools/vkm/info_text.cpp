#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

#include "client/text_encoding.h"
#include "info_report.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

// In full, with at most six decimals; in short form where that would take more than a line's share.
std::string Real(double value) {
    std::array<char, 32> text{};
    const std::to_chars_result full =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 6);
    if (full.ec != std::errc()) {
        return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
    }
    std::string number(text.data(), full.ptr);
    if (std::isfinite(value)) {
        number.erase(number.find_last_not_of('0') + 1);
        if (number.back() == '.') number.pop_back();
    }
    return number;
}

// Rows of cells, each column as wide as its widest cell and set to the right.
class Table {
  public:
    explicit Table(std::vector<std::string> heading) { rows.push_back(std::move(heading)); }

    void Add(std::vector<std::string> row) { rows.push_back(std::move(row)); }

    std::string Text() const {
        std::vector<size_t> widths(rows.front().size());
        for (const auto& row : rows) {
            for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], LettersOf(row[i]));
        }
        std::string text;
        for (const auto& row : rows) {
            for (size_t i = 0; i < row.size(); ++i) text.append("  ").append(PaddedLeft(row[i], widths[i]));
            text += '\n';
        }
        return text;
    }

  private:
    std::vector<std::vector<std::string>> rows;
};

std::vector<std::string> CountRow(std::string name, const LayerCounts& layer) {
    std::vector<std::string> row = {std::move(name), std::to_string(layer.lines),
                                    std::to_string(layer.elements)};
    for (size_t i = 0; i < typeLetters.size(); ++i) row.push_back(std::to_string(layer.types[i]));
    row.push_back(std::to_string(layer.types[otherTypeLetter] + layer.types[noTypeLetter]));
    row.push_back(std::to_string(layer.texts));
    row.push_back(std::to_string(layer.symbols));
    return row;
}

std::string CountTable(const FileSummary& summary) {
    Table table({Translated("Layer"), Translated("Lines"), Translated("Elements"), "C", "K", "L", "P", "R",
                 Translated("other"), Translated("Texts"), Translated("Symbols")});
    for (const auto& [number, layer] : summary.Layers()) table.Add(CountRow(std::to_string(number), layer));
    table.Add(CountRow(Translated("all"), summary.Total()));
    return table.Text();
}

// Codes are bytes of the file; what would move a terminal's cursor is shown as a dot.
std::string Printable(std::string code) {
    std::replace_if(
        code.begin(), code.end(), [](char letter) { return (letter >= 0 && letter < ' ') || letter == 0x7F; },
        '.');
    return client::MessageToUtf8(code);
}

CodeCounts AsText(const std::map<int, uint64_t>& codes) {
    CodeCounts counts;
    for (const auto& [code, count] : codes) counts.emplace_back(std::to_string(code), count);
    return counts;
}

// "layer 2: 1101 (40), 1102 (3)", broken before column 100.
std::string CodeLine(int layer, const CodeCounts& codes) {
    constexpr size_t lastColumn = 100;
    const std::string indent(12, ' ');
    std::string text;
    std::string line = "  " + Filled("layer {}", {std::to_string(layer)}) + ':';
    line = PaddedRight(line, indent.size() - 1);
    for (const auto& [code, count] : codes) {
        const bool last = &code == &codes.back().first;
        const std::string item = ' ' + code + " (" + std::to_string(count) + (last ? ")" : "),");
        if (line.size() + item.size() > lastColumn) {
            text.append(line).append("\n");
            line.assign(indent.size() - 1, ' ');
        }
        line += item;
    }
    return text + line + '\n';
}

// A section of code counts by layer; empty when no layer has any.
template <typename CodesOf>
std::string CodeSection(Message heading, const FileSummary& summary, CodesOf codesOf) {
    std::string lines;
    for (const auto& [number, layer] : summary.Layers()) {
        const CodeCounts codes = codesOf(layer);
        if (!codes.empty()) lines += CodeLine(number, codes);
    }
    return lines.empty() ? lines : '\n' + Translated(heading) + '\n' + lines;
}

// A line of the head: what it is, and its value.
std::string HeadLine(std::string_view what, const std::string& value) {
    constexpr size_t width = 13;
    return "  " + PaddedRight(what, width) + value + '\n';
}

std::string ExtentsText(const std::array<Range, 2>& extents) {
    const std::string what = Translated("Extents");
    if (!extents[0].Found() || !extents[1].Found()) return HeadLine(what, Translated("none"));
    const auto range = [](const Range& extent) {
        return Filled("{} to {}", {Real(extent.minimum), Real(extent.maximum)});
    };
    return HeadLine(what, "x " + range(extents[0])) + HeadLine("", "y " + range(extents[1]));
}

}  // namespace

std::string ReportText(const FileReport& report) {
    std::string text = client::Printable(report.file) + '\n';
    if (!report.opened) return text + "  " + Translated("not readable") + '\n';
    text += HeadLine(Translated("Map scale"), "1:" + Real(report.scale));
    text += HeadLine(
        Translated("Coordinates"),
        Translated(report.relative ? Message("relative to the offsets of the header") : Message("absolute")));
    text += ExtentsText(report.summary.Extents());
    text += HeadLine(Translated("Lines read"), std::to_string(report.linesRead));
    text +=
        HeadLine(Translated("Complete"),
                 report.complete ? Translated("yes") : Filled("no: {}", {TranslatedSentence(report.error)}));
    text += '\n';
    text += CountTable(report.summary);
    text += CodeSection("Codes of line elements (K)", report.summary, [](const LayerCounts& layer) {
        CodeCounts codes = layer.SortedElementCodes();
        for (auto& [code, count] : codes) code = Printable(code);
        return codes;
    });
    text += CodeSection("Symbol codes (S)", report.summary,
                        [](const LayerCounts& layer) { return AsText(layer.symbolCodes); });
    text += CodeSection("Codes of texts (K)", report.summary,
                        [](const LayerCounts& layer) { return AsText(layer.textCodes); });
    return text;
}

}  // namespace vemrado::tools
