// The checked reading's side of the comparison with the module.

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "map/checked_reading.h"
#include "vkm/readings.h"

namespace vemrado_test {

namespace {

std::string Bits(double value) {
    unsigned long long bits;
    std::memcpy(&bits, &value, sizeof bits);
    if (value != value) bits = ~0ull;
    char text[24];
    std::snprintf(text, sizeof text, " %016llx", bits);
    return text;
}

// What orientation makes of the axes: their exchange, and then their signs.
vemrado::map::Point Turned(vemrado::map::Point point, int orientation) {
    struct Axes {
        int orientation;
        bool exchanged;
        bool negatesX;
        bool negatesY;
    };
    constexpr Axes all[] = {{2, false, false, true},  {4, false, true, false}, {8, false, true, true},
                            {16, true, false, false}, {32, true, true, false}, {64, true, false, true},
                            {128, true, true, true}};
    for (const Axes& axes : all) {
        if (axes.orientation != orientation) continue;
        if (axes.exchanged) std::swap(point.x, point.y);
        return {axes.negatesX ? -point.x : point.x, axes.negatesY ? -point.y : point.y};
    }
    return point;
}

// What is wrong must lie in the file.
class Findings : public vemrado::map::FindingSink {
  public:
    explicit Findings(const std::string& fileBytes) : bytes(fileBytes) {
        size_t start = 0;
        for (size_t end; (end = bytes.find('\n', start)) != std::string::npos; start = end + 1)
            starts.push_back(start);
        starts.push_back(start);
    }

    void Take(const vemrado::map::Finding& finding) override {
        const auto& [rule, place, field, arguments, point] = finding;
        const bool lineThere = place.line >= 1 && place.line <= static_cast<int64_t>(starts.size());
        size_t at = lineThere ? starts[static_cast<size_t>(place.line) - 1] : 0;
        at += static_cast<size_t>(place.column - 1);
        const bool there = lineThere && place.column >= 1 && at <= bytes.size() &&
                           bytes.compare(at, field.size(), field) == 0;
        if (!there) {
            misplaced = std::string(vemrado::map::TextOf(rule).name) + " at " + std::to_string(place.line) +
                        ":" + std::to_string(place.column);
        }
    }

    std::string misplaced;

  private:
    const std::string& bytes;
    std::vector<size_t> starts;
};

class Elements : public vemrado::map::ElementSink {
  public:
    Elements(std::vector<std::string>& list, int axisOrientation)
        : seen(list), orientation(axisOrientation) {}

    void Line(std::span<const vemrado::map::CheckedVertex> vertices,
              const vemrado::map::CheckedLayer& layer) override {
        std::string element = "line";
        for (const vemrado::map::CheckedVertex& v : vertices) {
            const vemrado::map::Point point = Turned(v.point, v.hasPoint ? orientation : 1);
            element +=
                Describe({point.x, point.y, 0, v.type, v.code, v.valueM, v.valueR, v.valueU, v.symbolCode});
        }
        seen.push_back(element + DescribeLayer(layer.number, layer.name));
    }
    void Text(const vemrado::map::CheckedText& t, const vemrado::map::CheckedLayer& layer) override {
        const vemrado::map::Point point = Turned(t.point, orientation);
        const std::string element = DescribeText(point.x, point.y, 0, t.text, t.valueD, t.valueF,
                                                 t.valueH * (reading->Scale() / 1000), t.valueU, t.code);
        seen.push_back(element + DescribeLayer(layer.number, layer.name));
    }

    const vemrado::map::CheckedReading* reading = nullptr;

  private:
    std::vector<std::string>& seen;
    int orientation;
};

}  // namespace

std::string Describe(const SeenVertex& v) {
    return " [" + std::to_string(v.type) + Bits(v.x) + Bits(v.y) + Bits(v.z) + " K=" + v.code +
           " S=" + std::to_string(v.symbol) + Bits(v.m) + Bits(v.r) + Bits(v.u) + "]";
}

std::string DescribeText(double x, double y, double z, const std::string& text, int d, int f, double h,
                         double u, int code) {
    return "text '" + text + "'" + Bits(x) + Bits(y) + Bits(z) + " " + std::to_string(d) + " " +
           std::to_string(f) + Bits(h) + Bits(u) + " " + std::to_string(code);
}

std::string DescribeLayer(int number, const std::string& name) {
    std::string text = " layer ";
    return text.append(std::to_string(number)).append("/").append(name);
}

std::string DescribeEnd(double scale, int relative, int complete) {
    std::string text = "end";
    return text.append(Bits(scale))
        .append(relative ? " relative" : " absolute")
        .append(complete ? " complete" : "");
}

std::vector<std::string> ReadChecked(const std::string& bytes, int orientation, size_t mostPerRead) {
    size_t position = 0;
    const auto source = [&](char* to, size_t count) {
        count = std::min({count, mostPerRead, bytes.size() - position});
        std::memcpy(to, bytes.data() + position, count);
        position += count;
        return count;
    };
    std::vector<std::string> seen;
    Findings findings(bytes);
    Elements elements(seen, orientation);
    vemrado::map::CheckedReading reading(source, vemrado::client::Encoding::windows1250, findings, &elements);
    elements.reading = &reading;
    reading.Run();
    seen.push_back(DescribeEnd(reading.Scale(), reading.Relative(), reading.Complete()));
    if (!findings.misplaced.empty()) seen.push_back("misplaced: " + findings.misplaced);
    return seen;
}

}  // namespace vemrado_test
