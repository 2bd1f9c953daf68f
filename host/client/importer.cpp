#include "client/importer.h"

#include <new>

#include "client/input_file.h"
#include "client/stop_request.h"

namespace vemrado::client {

Importer::Importer() : importer(VkmDetails(CreateVKMInterface())) {
    if (importer == nullptr) throw std::bad_alloc();
}

Importer::~Importer() {
    DestroyVKMInterface(importer);
}

bool Importer::Open(const OpenOptions& options) {
    const InputFile input = LookAtInput(options.fileName);
    markSkipped = input.markSkipped;
    return importer->Open(input.name.c_str(), options.loadSymbology ? 1 : 0, options.layerName.c_str(),
                          options.axisOrientation, options.gpScale, options.flags) != 0;
}

ElementKind Importer::Next() {
    if (StopRequested()) return ElementKind::none;
    switch (importer->ReadNext()) {
        case 1:
            ReadLine();
            return ElementKind::line;
        case 2:
            ReadText();
            return ElementKind::text;
        default:
            return ElementKind::none;
    }
}

void Importer::ReadLayer(int& number, std::string& name) {
    name = importer->GetLayer(&number);
}

void Importer::ReadLine() {
    ReadLayer(line.layer, line.layerName);
    const int count = importer->GetElementCount();
    if (vertices.size() < static_cast<size_t>(count)) vertices.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        ElementVertex& vertex = vertices[static_cast<size_t>(i)];
        importer->GetElementPoint(i, vertex.point.data());
        vertex.type = importer->GetElementType(i);
        vertex.code = importer->GetElementCode(i);
        vertex.symbolCode = importer->GetElementSymbolCode(i);
        importer->GetElementValues(i, &vertex.valueM, &vertex.valueR, &vertex.valueU);
    }
    line.vertices = {vertices.data(), static_cast<size_t>(count)};
}

void Importer::ReadText() {
    ReadLayer(text.layer, text.layerName);
    text.text = importer->GetText();
    importer->GetTextPoint(text.point.data());
    importer->GetTextAttributes(&text.valueD, &text.valueF, &text.scaledH, &text.valueU);
    text.code = importer->GetTextCode();
}

}  // namespace vemrado::client
