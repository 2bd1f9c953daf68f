#include "elements.h"

#include <charconv>
#include <cmath>
#include <stdexcept>

#include "json.h"

namespace vemrado::web {
namespace {

// The shortest digits that read as the same number. Coordinates have two or three places: those first.
void AppendReal(double value, std::string& text) {
    char digits[40];
    const double thousands = std::round(value * 1000);
    if (std::abs(thousands) < 1e15 && thousands / 1000 == value && !(value == 0 && std::signbit(value))) {
        const int length = std::snprintf(digits, sizeof digits, "%.3f", value);
        std::string_view number(digits, static_cast<size_t>(length));
        while (number.back() == '0') number.remove_suffix(1);
        if (number.back() == '.') number.remove_suffix(1);
        text += number;
    } else if (std::isfinite(value)) {
        text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    } else {
        text += std::isnan(value) ? R"("NaN")" : value > 0 ? R"("Infinity")" : R"("-Infinity")";
    }
}

}  // namespace

ElementReader::ElementReader(const std::string& name, int file, double length, client::Encoding encoding,
                             int axisOrientation)
    : offered(name, file, length), decoder(encoding) {
    map::OpenOptions open;
    open.fileName = name;
    open.axisOrientation = axisOrientation;
    if (!importer.Open(open)) {
        throw std::runtime_error(offered.Boxes().empty() ? name : offered.Boxes().back());
    }
}

const std::string& ElementReader::Next(size_t bytes) {
    batch.clear();
    while (batch.size() < bytes) {
        const map::ElementKind kind = importer.Next();
        if (kind == map::ElementKind::none) break;
        kind == map::ElementKind::line ? PutLine(importer.Line()) : PutText(importer.Text());
    }
    return batch;
}

void ElementReader::PutNumber(const char* before, double value) {
    batch += before;
    AppendReal(value, batch);
}

void ElementReader::PutPoint(const char* before, double x, double y) {
    PutNumber(before, x);
    PutNumber(",", y);
    batch += ']';
}

void ElementReader::PutBytes(const char* before, std::string_view bytes) {
    batch += before;
    decoded.clear();
    decoder.Append(bytes, decoded);
    AppendQuoted(decoded, batch);
}

void ElementReader::PutLine(const map::RawLine& line) {
    PutNumber(R"({"kind":"line","layer":)", line.layer);
    PutNumber(R"(,"fileLine":)", line.fileLine);
    batch += R"(,"elements":[)";
    bool first = true;
    for (const VkmElement& element : line.elements) {
        PutPoint(first ? R"({"point":[)" : R"(,{"point":[)", element.x, element.y);
        first = false;
        batch += R"(,"type":")";
        if (element.type != 0) batch += element.type == 1 ? '?' : static_cast<char>(element.type);
        batch += '"';
        PutBytes(R"(,"K":)", element.code);
        PutNumber(R"(,"M":)", element.valueM);
        PutNumber(R"(,"R":)", element.valueR);
        PutNumber(R"(,"S":)", element.symbolCode);
        PutNumber(R"(,"U":)", element.valueU);
        batch += '}';
    }
    batch += "]}\n";
}

void ElementReader::PutText(const map::RawText& text) {
    PutNumber(R"({"kind":"text","layer":)", text.layer);
    PutNumber(R"(,"fileLine":)", text.fileLine);
    PutBytes(R"(,"text":)", text.text);
    PutPoint(R"(,"point":[)", text.point.x, text.point.y);
    PutNumber(R"(,"D":)", text.valueD);
    PutNumber(R"(,"F":)", text.valueF);
    PutNumber(R"(,"H":)", text.scaledH);
    PutNumber(R"(,"K":)", text.code);
    PutNumber(R"(,"U":)", text.valueU);
    batch += "}\n";
}

}  // namespace vemrado::web
