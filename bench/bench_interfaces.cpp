// Measures the C++ interface and the columns against the module's own operations on the same files.
//
//   bench_interfaces [--repeat N] FILE...
//
// The three take turns and ask the same: of a line its layer and the point, type, code and symbol code of
// each element; of a text its layer, text, point, code, size and rotation. The columns are those of all lines
// and texts.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "samples.h"
#include "vemrado/vkm.hpp"
#include "vemrado/vkm_arrow.h"
#include "vemrado/vkm_details.h"

namespace {

double BySlots(const char* path) {
    double sum = 0;
    CVKMDetails* importer = VkmDetails(CreateVKMInterface());
    if (importer == nullptr || importer->Open(path, 0, "", 128, 0.0, CVKMInterface::flgSymbolsNone) == 0)
        throw std::runtime_error("cannot open the file");
    double point[3];
    while (const int kind = importer->ReadNext()) {
        int layer;
        sum += importer->GetLayer(&layer)[0] + layer;
        if (kind == 1) {
            const int count = importer->GetElementCount();
            for (int i = 0; i < count; ++i) {
                importer->GetElementPoint(i, point);
                sum += point[0] + point[1] + importer->GetElementType(i) + importer->GetElementSymbolCode(i) +
                       importer->GetElementCode(i)[0];
            }
        } else {
            int valueD, valueF;
            double height, rotation;
            importer->GetTextPoint(point);
            importer->GetTextAttributes(&valueD, &valueF, &height, &rotation);
            sum += point[0] + point[1] + valueD + valueF + height + rotation + importer->GetTextCode() +
                   importer->GetText()[0];
        }
    }
    DestroyVKMInterface(importer);
    return sum;
}

double ByElements(const char* path) {
    double sum = 0;
    for (const vkm::Element& element : vkm::Reader(path)) {
        sum += element.Raw().layer_name[0] + element.Layer();
        const vkm_element& raw = element.Raw();
        const vkm::Span<vkm::Point> points = element.Points();
        if (element.IsLine()) {
            for (std::size_t i = 0; i < points.size(); ++i)
                sum += points[i].x + points[i].y + raw.types[i] + raw.symbols[i] + raw.codes[i][0];
        } else {
            sum += points[0].x + points[0].y + raw.d_value + raw.f_value + raw.height + raw.rotation +
                   raw.code + raw.text[0];
        }
    }
    return sum;
}

double ByColumns(const char* path) {
    double rows = 0;
    vkm::Reader reader(path);
    for (const vkm_table table : {VKM_LINES, VKM_TEXTS}) {
        ArrowArrayStream stream;
        reader.Stream(table, &stream);
        ArrowArray batch;
        while (stream.get_next(&stream, &batch) == 0 && batch.release != nullptr) {
            rows += static_cast<double>(batch.length);
            batch.release(&batch);
        }
        stream.release(&stream);
    }
    return rows;
}

}  // namespace

int main(int argc, char** argv) {
    int repeat = 5;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--repeat") == 0 && i + 1 < argc) {
            repeat = std::atoi(argv[++i]);
            continue;
        }
        Samples slots, elements, columns;
        double bySlots = 0, byElements = 0, rows = 0;
        for (int round = 0; round < repeat; ++round) {
            slots.Time([&] { bySlots = BySlots(argv[i]); });
            elements.Time([&] { byElements = ByElements(argv[i]); });
            columns.Time([&] { rows = ByColumns(argv[i]); });
        }
        std::printf(
            "{\"file\": \"%s\", \"slots\": %.4f, \"elements\": %.4f, \"elements_ratio\": %.3f, \"columns\": "
            "%.4f, "
            "\"columns_ratio\": %.3f, \"rows\": %.0f, \"difference\": %.3g}\n",
            argv[i], slots.Minimum(), elements.Minimum(), elements.MedianRatio(slots), columns.Minimum(),
            columns.MedianRatio(slots), rows, bySlots - byElements);
    }
}
