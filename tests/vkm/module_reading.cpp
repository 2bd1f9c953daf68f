// The module's side of the comparison with the checked reading.

#include "interface/importer.h"
#include "vemrado/vkm_details.h"
#include "vkm/readings.h"

namespace vemrado_test {

namespace {

std::string DescribeLine(CVKMDetails& vkm) {
    std::string element = "line";
    for (int i = 0; i < vkm.GetElementCount(); ++i) {
        SeenVertex v;
        double point[3], rAgain;
        vkm.GetElementPoint(i, point);
        v = {point[0], point[1], point[2], vkm.GetElementType(i),      vkm.GetElementCode(i),
             0,        0,        0,        vkm.GetElementSymbolCode(i)};
        vkm.GetElementValues(i, &v.m, &v.r, &v.u);
        vkm.GetElementRValue(i, &rAgain);
        element += Describe(v);
        if (!(rAgain == v.r) && v.r == v.r) element += " R differs";
    }
    return element;
}

std::string DescribeModuleText(CVKMDetails& vkm) {
    double point[3], h, u;
    int d, f;
    vkm.GetTextPoint(point);
    vkm.GetTextAttributes(&d, &f, &h, &u);
    return DescribeText(point[0], point[1], point[2], vkm.GetText(), d, f, h, u, vkm.GetTextCode());
}

}  // namespace

std::vector<std::string> ReadByModule(const char* name, int orientation) {
    CVKMDetails* vkm = VkmDetails(vemrado::CreateImporter());
    std::vector<std::string> seen;
    if (vkm->Open(name, 0, nullptr, orientation, 0, 0) == 1) {
        while (const int kind = vkm->ReadNext()) {
            int number;
            const std::string element = kind == 2 ? DescribeModuleText(*vkm) : DescribeLine(*vkm);
            const std::string layerName = vkm->GetLayer(&number);
            seen.push_back(element + DescribeLayer(number, layerName));
        }
        seen.push_back(DescribeEnd(vkm->GetScale(), vkm->GetRelativeCoordinates(), vkm->IsComplete()));
    }
    vemrado::DestroyImporter(vkm);
    return seen;
}

}  // namespace vemrado_test
