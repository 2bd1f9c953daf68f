#include "map/known_codes.h"

#include <algorithm>
#include <memory>
#include <new>

#include "map/symbology.h"
#include "vemrado/vkm_details.h"

namespace vemrado::map {
namespace {

std::vector<int> Numbers(const std::vector<CodeEntry>& entries) {
    std::vector<int> numbers;
    for (const CodeEntry& entry : entries) numbers.push_back(entry.code);
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

}  // namespace

KnownCodes LoadKnownCodes() {
    const std::unique_ptr<CVKMDetails, void (*)(CVKMDetails*)> importer(
        VkmDetails(CreateVKMInterface()), [](CVKMDetails* made) { DestroyVKMInterface(made); });
    if (!importer) throw std::bad_alloc();
    importer->LoadSymbology(1);
    return {Numbers(LineCodes(*importer)), Numbers(SymbolCodes(*importer))};
}

}  // namespace vemrado::map
