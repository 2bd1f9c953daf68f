#include "elements.h"

#include <stdexcept>

namespace vemrado::web {

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

const ElementBatch& ElementReader::Next(size_t numbers) {
    batch.numbers.clear();
    batch.texts.clear();
    codes.clear();
    placeOfLast = -1;
    textCount = 0;
    while (batch.numbers.size() < numbers) {
        const map::ElementKind kind = importer.Next();
        if (kind == map::ElementKind::none) break;
        kind == map::ElementKind::line ? PutLine(importer.Line()) : PutText(importer.Text());
    }
    return batch;
}

void ElementReader::PutLine(const map::RawLine& line) {
    std::vector<double>& numbers = batch.numbers;
    const size_t begin = numbers.size();
    numbers.resize(begin + 3 + 8 * line.elements.size());
    double* put = numbers.data() + begin;
    *put++ = static_cast<double>(line.elements.size());
    *put++ = line.layer;
    *put++ = line.fileLine;
    for (const VkmElement& element : line.elements) {
        *put++ = element.x;
        *put++ = element.y;
        *put++ = element.type == 1 ? '?' : element.type;  // 1: a letter that is none of a type's
        *put++ = PlaceOfCode(element.code);
        *put++ = element.valueM;
        *put++ = element.valueR;
        *put++ = element.symbolCode;
        *put++ = element.valueU;
    }
}

void ElementReader::PutText(const map::RawText& text) {
    batch.numbers.insert(batch.numbers.end(),
                         {-1, double(text.layer), static_cast<double>(text.fileLine), AddText(text.text),
                          text.point.x, text.point.y, double(text.valueD), double(text.valueF), text.scaledH,
                          double(text.code), text.valueU});
}

double ElementReader::PlaceOfCode(std::string_view code) {
    if (code == lastCode && placeOfLast >= 0) return placeOfLast;
    lastCode = code;
    const auto [found, isNew] = codes.try_emplace(lastCode);
    if (isNew) found->second = AddText(code);
    return placeOfLast = found->second;
}

double ElementReader::AddText(std::string_view bytes) {
    decoder.Append(bytes, batch.texts);
    batch.texts += '\n';
    return static_cast<double>(textCount++);
}

}  // namespace vemrado::web
