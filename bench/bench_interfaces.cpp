// Measures the C++ interface and the columns against the module's own operations on the same files.
//
//   bench_interfaces [--repeat N] FILE...
//
// They take turns and ask the same: of a line its layer and the point, type, code and symbol code of each
// element, and for everything its M, R and U values too; of a text its layer, text, point, code, size and
// rotation. The columns are those of all lines and texts, in one passage.

#include <sys/resource.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "samples.h"
#include "vemrado/vkm.hpp"
#include "vemrado/vkm_arrow.h"
#include "vemrado/vkm_details.h"

namespace {

// Of an element a host takes what it draws, or everything that it has.
enum class Taken { drawn, everything };

double SumOfLine(CVKMDetails& importer, Taken taken) {
    double sum = 0;
    double point[3];
    double valueM, valueR, valueU;
    const int count = importer.GetElementCount();
    for (int i = 0; i < count; ++i) {
        importer.GetElementPoint(i, point);
        sum += point[0] + point[1] + importer.GetElementType(i) + importer.GetElementSymbolCode(i) +
               importer.GetElementCode(i)[0];
        if (taken == Taken::drawn) continue;
        importer.GetElementValues(i, &valueM, &valueR, &valueU);
        sum += valueM + valueR + valueU;
    }
    return sum;
}

double SumOfText(CVKMDetails& importer) {
    double point[3];
    int valueD, valueF;
    double height, rotation;
    importer.GetTextPoint(point);
    importer.GetTextAttributes(&valueD, &valueF, &height, &rotation);
    return point[0] + point[1] + valueD + valueF + height + rotation + importer.GetTextCode() +
           importer.GetText()[0];
}

double BySlots(const char* path, Taken taken) {
    double sum = 0;
    CVKMDetails* importer = VkmDetails(CreateVKMInterface());
    if (importer == nullptr || importer->Open(path, 0, "", 128, 0.0, CVKMInterface::flgSymbolsNone) == 0)
        throw std::runtime_error("cannot open the file");
    while (const int kind = importer->ReadNext()) {
        int layer;
        sum += importer->GetLayer(&layer)[0] + layer;
        sum += kind == 1 ? SumOfLine(*importer, taken) : SumOfText(*importer);
    }
    DestroyVKMInterface(importer);
    return sum;
}

double SumOfLine(const vkm::Element& element, Taken taken) {
    double sum = 0;
    const vkm_element& raw = element.Raw();
    const vkm::Span<vkm::Point> points = element.Points();
    for (std::size_t i = 0; i < points.size(); ++i) {
        sum += points[i].x + points[i].y + raw.types[i] + raw.symbols[i] + raw.codes[i][0];
        if (taken == Taken::everything) sum += raw.m_values[i] + raw.r_values[i] + raw.u_values[i];
    }
    return sum;
}

double SumOfText(const vkm::Element& element) {
    const vkm_element& raw = element.Raw();
    return raw.points[0] + raw.points[1] + raw.d_value + raw.f_value + raw.height + raw.rotation + raw.code +
           raw.text[0];
}

double ByElements(const char* path, Taken taken) {
    double sum = 0;
    for (const vkm::Element& element : vkm::Reader(path)) {
        sum += element.Raw().layer_name[0] + element.Layer();
        sum += element.IsLine() ? SumOfLine(element, taken) : SumOfText(element);
    }
    return sum;
}

double ByColumns(const char* path) {
    double rows = 0;
    vkm::Reader reader(path);
    ArrowArrayStream streams[2];
    reader.Streams({VKM_LINES, VKM_TEXTS}, streams);
    for (ArrowArrayStream& stream : streams) {
        ArrowArray batch;
        while (stream.get_next(&stream, &batch) == 0 && batch.release != nullptr) {
            rows += static_cast<double>(batch.length);
            batch.release(&batch);
        }
        stream.release(&stream);
    }
    return rows;
}

// Times of one question, asked in turn by the operations and by elements.
struct Asked {
    Samples slots, elements;

    void Ask(const char* path, Taken taken) {
        double bySlots = 0, byElements = 0;
        slots.Time([&] { bySlots = BySlots(path, taken); });
        elements.Time([&] { byElements = ByElements(path, taken); });
        // The one has codes in UTF-8 and '?' for unknown types.
        if (std::abs(byElements / bySlots - 1) > 1e-6) throw std::runtime_error("the sums differ");
    }
};

void Measure(const char* path, int repeat) {
    Asked drawn, everything;
    Samples columns;
    double rows = 0;
    for (int round = 0; round < repeat; ++round) {
        drawn.Ask(path, Taken::drawn);
        columns.Time([&] { rows = ByColumns(path); });
        everything.Ask(path, Taken::everything);
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf(
        "{\"file\": \"%s\", \"slots_drawn\": %.4f, \"elements_drawn\": %.4f, \"elements_drawn_ratio\": %.3f, "
        "\"slots\": %.4f, \"elements\": %.4f, \"elements_ratio\": %.3f, \"columns\": %.4f, "
        "\"columns_ratio\": "
        "%.3f, \"rows\": %.0f, \"peak_megabytes\": %ld}\n",
        path, drawn.slots.Minimum(), drawn.elements.Minimum(), drawn.elements.MedianRatio(drawn.slots),
        everything.slots.Minimum(), everything.elements.Minimum(),
        everything.elements.MedianRatio(everything.slots), columns.Minimum(),
        columns.MedianRatio(drawn.slots), rows, usage.ru_maxrss / 1024);
}

}  // namespace

int main(int argc, char** argv) {
    int repeat = 5;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--repeat") == 0 && i + 1 < argc) {
            repeat = std::atoi(argv[++i]);
        } else {
            Measure(argv[i], repeat);
        }
    }
}
