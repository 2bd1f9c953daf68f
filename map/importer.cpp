#include "map/importer.h"

#include <new>

#include "client/input_file.h"
#include "client/stop_request.h"

namespace vemrado::map {
namespace {

// Room that is kept from line to line; a longer line's goes with it.
constexpr size_t keptElements = 65536;

}  // namespace

Importer::Importer() : details(VkmDetails(CreateVKMInterface())) {
    if (details == nullptr) throw std::bad_alloc();
}

Importer::~Importer() {
    DestroyVKMInterface(details);
}

bool Importer::Open(const OpenOptions& options) {
    client::InputFile input;
    input.name = options.fileName;
    if (options.lookAtFile) input = client::LookAtInput(options.fileName);
    markSkipped = input.markSkipped;
    axisOrientation = options.axisOrientation;
    linesBefore = details->GetLineCount();
    details->SetDataDirectory(options.dataDirectory.c_str());
    const int flags = options.symbols ? CVKMInterface::flgSymbols : CVKMInterface::flgSymbolsNone;
    return details->Open(input.name.c_str(), options.symbology ? 1 : 0, options.layerName.c_str(),
                         axisOrientation, 0.0, flags) != 0;
}

bool Importer::StopsHere() {
    sinceAsked = 0;
    return client::StopRequested();
}

const RawLine& Importer::Line() {
    if (!copied) CopyLine();
    copied = true;
    return line;
}

const RawText& Importer::Text() {
    if (!copied) CopyText();
    copied = true;
    return text;
}

void Importer::CopyLine() {
    line.layerName = details->GetLayer(&line.layer);
    line.fileLine = details->GetFileLine();
    const int count = details->GetElementCount();
    const auto size = static_cast<size_t>(count);
    if (size < keptElements && elements.size() > keptElements)
        std::vector<VkmElement>(keptElements).swap(elements);
    if (elements.size() < size) elements.resize(size);
    details->CopyElements(0, count, elements.data());
    line.elements = {elements.data(), size};
}

void Importer::CopyText() {
    text.layerName = details->GetLayer(&text.layer);
    text.fileLine = details->GetFileLine();
    text.text = details->GetText();
    double point[3];
    details->GetTextPoint(point);
    text.point = {point[0], point[1]};
    details->GetTextAttributes(&text.valueD, &text.valueF, &text.scaledH, &text.valueU);
    text.code = details->GetTextCode();
}

}  // namespace vemrado::map
