// A VKM file and a sequence of operations, through the interface: nothing but the documented results and
// exceptions.

#include <stdexcept>
#include <string>

#include "interface/importer.h"
#include "symbols/shape_bytes.h"
#include "tables/symbology_files.h"
#include "targets.h"
#include "vemrado/vkm_details.h"

namespace vemrado_fuzz {
namespace {

// Calls an operation that may throw for a bad index, and only then.
template <class Call>
void Indexed(CVKMDetails& vkm, int index, Call call) {
    const bool valid = index >= 0 && index < vkm.GetElementCount();
    bool threw = false;
    try {
        call();
    } catch (const std::invalid_argument&) {
        threw = true;
    }
    Require(threw != valid, "an index throws exactly when it is out of range");
}

void CallElementAccessors(CVKMDetails& vkm, int index) {
    double values[3];
    Indexed(vkm, index, [&] { vkm.GetElementPoint(index, values); });
    Indexed(vkm, index, [&] { vkm.GetElementRValue(index, values); });
    Indexed(vkm, index, [&] { vkm.GetElementValues(index, &values[0], &values[1], &values[2]); });
    Indexed(vkm, index,
            [&] { Require(std::string(vkm.GetElementCode(index)).size() < 1024, "code fits its line"); });
    Indexed(vkm, index, [&] {
        const int type = vkm.GetElementType(index);
        Require(
            type == 0 || type == 1 || std::string("CKLPR").find(static_cast<char>(type)) != std::string::npos,
            "type is known");
    });
    Indexed(vkm, index, [&] { vkm.GetElementSymbolCode(index); });
}

void CallElementSymbology(CVKMDetails& vkm, int index, int flags) {
    int pattern = 0;
    unsigned int colour = 0;
    double values[2];
    Indexed(vkm, index, [&] { vkm.GetElementLineStyle(index, &colour, &pattern); });
    if ((flags & 1) == 0) {
        Require(vkm.GetElementSymbol(index) == 0, "no symbols without the flag");
        return;
    }
    Indexed(vkm, index, [&] { vkm.GetElementSymbol(index); });
    Indexed(vkm, index, [&] { vkm.GetElementSymbolPlacement(index, &values[0], &values[1], &pattern); });
}

void CallTextAccessors(CVKMDetails& vkm) {
    double values[3];
    int number, other;
    Require(std::string(vkm.GetText()).size() <= 255, "text fits");
    Require(std::string(vkm.GetLayer(&number)).size() <= 64, "layer name fits");
    vkm.GetTextPoint(values);
    vkm.GetTextAttributes(&number, &other, &values[0], &values[1]);
    vkm.TransformPoint(values);
    vkm.GetScale();
    vkm.GetLineCount();
    vkm.GetTextCode();
}

void CallOperation(CVKMDetails& vkm, Script& script, int& flags) {
    const auto index = static_cast<int>(script.Byte()) - 4;
    unsigned int colour;
    int pattern;
    double box[4];
    switch (script.Byte() % 12) {
        case 0:
            flags = index & 3;
            vkm.Open("map.vkm", index >> 2 & 1, "name", index, 1, flags);
            break;
        case 1:
            vkm.Close();
            break;
        case 2:
            vkm.GetExtents(&box[0], &box[1], &box[2], &box[3]);
            break;
        case 3:
            vkm.SetLayerName(index % 2 == 0 ? "" : "other");
            break;
        case 4:
            vkm.SetAxisOrientation(index);
            break;
        case 5:
            vkm.SetLayerValue(index, index);
            break;
        case 6:
            vkm.GetLayerStyle(index, &colour, &pattern);
            break;
        case 7:
            vkm.GetLayerValue(index);
            break;
        case 8:
            CallTextAccessors(vkm);
            break;
        case 9:
            CallElementAccessors(vkm, index);
            break;
        case 10:
            CallElementSymbology(vkm, index, flags);
            break;
        default:
            vkm.ReadNext();
            break;
    }
}

void SetSymbology(vemrado_test::SymbologyFiles& symbology) {
    symbology["WKOKES.COL"] = "[white]\n1=1,2,3\n[width]\n";
    symbology["WKOKES.CAR"] = "1 1,2 -3\n-3 1 .5\n";
    symbology["DKM1_3.TB"] = ":L\n1 1\n21900 1\n:S\n1 1\n2 2\n3 257\n";
    symbology["WKOKES.SYM"] = "a b\n1\n2\n257\n";
    symbology["a.ksh"] = vemrado_test::shapeMagic + vemrado_test::Stroke(7);
}

// The first byte is the number of operations, two bytes each; the rest is the file.
void RunOperations(std::string_view bytes) {
    Script script(bytes);
    const size_t operations = script.Byte() % 32;
    Script sequence(script.Rest().substr(0, 2 * operations));
    vemrado_test::SymbologyFiles symbology;
    SetSymbology(symbology);
    vemrado_test::MemoryFiles& files = symbology.files;
    files["map.vkm"] = std::string(script.Rest().substr(std::min(script.Rest().size(), 2 * operations)));

    CVKMDetails* vkm = VkmDetails(vemrado::CreateImporter());
    int flags = 0;
    while (!sequence.Done()) CallOperation(*vkm, sequence, flags);
    flags = 3;
    if (vkm->Open("map.vkm", 0, "", 1, 0, flags) == 1) {
        while (vkm->ReadNext() != 0) {
            for (int i = -1; i <= vkm->GetElementCount(); ++i) CallElementAccessors(*vkm, i);
            CallTextAccessors(*vkm);
        }
    }
    vemrado::DestroyImporter(vkm);
    Require(files.openFiles == 0, "every file is closed");
}

const Target target("vkm_file", RunOperations);

}  // namespace
}  // namespace vemrado_fuzz
