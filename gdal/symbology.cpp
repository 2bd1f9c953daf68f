#include "symbology.h"

#include <exception>
#include <mutex>
#include <utility>

#include "map/importer.h"
#include "module_session.h"

namespace vemrado::gdal {

namespace {

void Load(const std::string& dataDirectory, Symbology& symbology) {
    ModuleSession session;
    try {
        const map::Importer importer;
        CVKMDetails& details = importer.Details();
        details.SetDataDirectory(dataDirectory.c_str());
        details.LoadSymbology(1);
        for (map::CodeEntry& entry : map::LineCodes(details)) {
            if (auto pen = map::FindPen(details, entry.code))
                symbology.pens.emplace(entry.code, NamedPen{std::move(entry.name), std::move(*pen)});
        }
        for (map::CodeEntry& entry : map::SymbolCodes(details)) {
            auto drawing = map::FindDrawing(details, entry.code);
            if (drawing && !drawing->strokes.empty())
                symbology.symbols.emplace(entry.code,
                                          NamedDrawing{std::move(entry.name), std::move(*drawing)});
        }
    } catch (const std::exception& error) {
        session.Report(CE_Warning, CPLE_AppDefined, dataDirectory + ": " + error.what());
    }
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
