#include "symbology.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <cpl_vsi.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <mutex>

#include "client/symbology_index.h"
#include "module_session.h"
#include "vemrado/vkm_details.h"
#include "zrv320/zrv320.h"

namespace vemrado::gdal {

namespace {

constexpr double defaultWidth = 0.18;  // of line types that give none
constexpr uint8_t endOfList = '@';

// The lengths of a line pattern as pairs of drawn stretch and gap. Neighbours of one kind are joined, round
// the end of the list too.
void SetDashes(LinePen& pen, const PatternElement* element) {
    if (element == nullptr) return;
    std::vector<double> lengths;
    uint8_t first = 0;
    uint8_t last = 0;
    for (; element->code != endOfList; ++element) {
        if (!std::isfinite(element->x) || element->x < 0.0) continue;
        if (lengths.empty()) first = element->code;
        if (!lengths.empty() && element->code == last) {
            lengths.back() += element->x;
        } else {
            lengths.push_back(double{element->x});  // by value: records are packed
        }
        last = element->code;
    }
    const bool startsDrawn = first == 1;
    if (lengths.size() == 1) pen.visible = startsDrawn;
    if (lengths.size() < 2) return;
    if (lengths.size() % 2 == 1) {
        lengths.front() += lengths.back();
        lengths.pop_back();
    }
    if (!startsDrawn) std::rotate(lengths.begin(), lengths.begin() + 1, lengths.end());
    for (size_t i = 0; i < lengths.size(); i += 2) lengths[i] = std::max(lengths[i], pen.width);
    pen.dashes = std::move(lengths);
}

void SetStrokes(PointSymbol& symbol, const PatternElement* element) {
    if (element == nullptr) return;
    OGRRawPoint at(0.0, 0.0);
    for (; element->code != endOfList; ++element) {
        at = OGRRawPoint(at.x + element->x, at.y + element->y);
        if (!std::isfinite(at.x) || !std::isfinite(at.y)) break;
        if (element->code == 0 || symbol.strokes.empty()) symbol.strokes.emplace_back();
        symbol.strokes.back().push_back(at);
        symbol.reach = std::max({symbol.reach, std::abs(at.x), std::abs(at.y)});
    }
    std::erase_if(symbol.strokes, [](const auto& stroke) { return stroke.size() < 2; });
}

// A file with one line for each code, in memory for as long as this lives.
class FileOfCodes {
  public:
    explicit FileOfCodes(const client::SymbologyIndex& index)
        : path(CPLString().Printf("/vsimem/vkm-codes-%p", static_cast<void*>(this))) {
        for (const auto& line : index.Lines()) text += "&L P 0 0 K=" + std::to_string(line.code) + "\n";
        for (const auto& symbol : index.Symbols()) text += "&L P 0 0 S=" + std::to_string(symbol.code) + "\n";
        text += "&K\n";
        VSIFCloseL(
            VSIFileFromMemBuffer(path.c_str(), reinterpret_cast<GByte*>(text.data()), text.size(), FALSE));
    }
    FileOfCodes(const FileOfCodes&) = delete;
    FileOfCodes& operator=(const FileOfCodes&) = delete;
    ~FileOfCodes() { VSIUnlink(path.c_str()); }

    const char* Path() const { return path.c_str(); }

  private:
    std::string path;
    std::string text;
};

void TakeStyles(CVKMInterface& importer, const client::SymbologyIndex& index, Symbology& symbology) {
    for (const auto& line : index.Lines()) {
        if (importer.ReadNext() == 0) return;
        LinePen pen;
        int pattern = 0;
        if (importer.GetElementLineStyle(0, &pen.colour, &pattern) == 0) continue;
        pen.name = line.name;
        pen.width = line.width > 0.0 ? line.width : defaultWidth;
        SetDashes(pen, ZrvLinePattern(pattern));
        symbology.pens.emplace(line.code, std::move(pen));
    }
    for (const auto& entry : index.Symbols()) {
        if (importer.ReadNext() == 0) return;
        PointSymbol symbol;
        SetStrokes(symbol, ZrvPointPattern(importer.GetElementSymbol(0)));
        if (symbol.strokes.empty()) continue;
        symbol.name = entry.name;
        symbology.symbols.emplace(entry.code, std::move(symbol));
    }
}

// The interface answers for the elements of a file, so a file with all codes is imported.
void Load(const std::string& dataDirectory, Symbology& symbology) {
    const client::SymbologyIndex index(dataDirectory);
    const FileOfCodes file(index);
    ModuleSession session(dataDirectory);
    CVKMInterface* importer = CVKMInterface::CreateVKMInterface();
    if (importer == nullptr) return;
    try {
        if (importer->Open(file.Path(), 1, "", 1, 0.0, CVKMInterface::flgSymbols) != 0)
            TakeStyles(*importer, index, symbology);
    } catch (const std::exception& error) {
        session.Report(CE_Warning, CPLE_AppDefined, dataDirectory + ": " + error.what());
    }
    CVKMInterface::DestroyVKMInterface(importer);
}

}  // namespace

std::shared_ptr<const Symbology> Symbology::Of(const std::string& dataDirectory) {
    static std::mutex lock;
    static std::map<std::string, std::shared_ptr<const Symbology>> known;
    const std::lock_guard guard(lock);
    std::shared_ptr<const Symbology>& place = known[dataDirectory];
    if (place == nullptr) {
        const auto loaded = std::make_shared<Symbology>();
        Load(dataDirectory, *loaded);
        place = loaded;
    }
    return place;
}

}  // namespace vemrado::gdal
