// The module as a host gets it with LoadLibrary: its tables, its slots, its coming and going.

#include <algorithm>

#include "host.h"
#include "pe_image.h"

namespace windows_test {
namespace {

class Module {
  public:
    Module() : handle(LoadLibraryA("Vemrado.dll")) {}
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    ~Module() {
        if (handle != nullptr) FreeLibrary(handle);
    }
    HMODULE Handle() const { return handle; }

    template <class Function>
    Function Export(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle, name)));
    }

  private:
    HMODULE handle;
};

// An operation of an importer by its slot alone.
template <class Result, class... Arguments>
Result CallSlot(void* importer, int slot, Arguments... arguments) {
    using Operation = Result (*)(void*, Arguments...);
    return (*static_cast<Operation**>(importer))[slot](importer, arguments...);
}

using Create = void* (*)();
using Destroy = void (*)(void*);

TEST(Load, ExportsExactlyTheDocumentedNames) {
    const Module module;
    ASSERT_NE(module.Handle(), nullptr);
    const std::set<std::string> expected = {
        "CreateVKMInterface",
        "DestroyVKMInterface",
        "??0CVKMInterface@@IEAA@XZ",
        "??0CVKMInterface@@QEAA@AEBV0@@Z",
        "??1CVKMInterface@@IEAA@XZ",
        "??4CVKMInterface@@QEAAAEAV0@AEBV0@@Z",
        "?CreateVKMInterface@CVKMInterface@@SAPEAV1@XZ",
        "?DestroyVKMInterface@CVKMInterface@@SAXPEAV1@@Z",
        "?flgSymbolsNone@CVKMInterface@@2HB",
        "?flgSymbols@CVKMInterface@@2HB",
        "?flgSymbolsByGPScale@CVKMInterface@@2HB",
        "_ZN13CVKMInterface18CreateVKMInterfaceEv",
        "_ZN13CVKMInterface19DestroyVKMInterfaceEPS_",
        "_ZN13CVKMInterface14flgSymbolsNoneE",
        "_ZN13CVKMInterface10flgSymbolsE",
        "_ZN13CVKMInterface19flgSymbolsByGPScaleE",
    };
    EXPECT_EQ(PeImage(module.Handle()).Exports(), expected);
    EXPECT_EQ(*module.Export<const int*>("?flgSymbolsNone@CVKMInterface@@2HB"), 0);
    EXPECT_EQ(*module.Export<const int*>("?flgSymbols@CVKMInterface@@2HB"), 1);
    EXPECT_EQ(*module.Export<const int*>("_ZN13CVKMInterface19flgSymbolsByGPScaleE"), 2);
}

TEST(Load, ImportsTheSystemAndTheHostsLibrariesOnly) {
    const Module module;
    ASSERT_NE(module.Handle(), nullptr);
    auto imports = PeImage(module.Handle()).Imports();
    EXPECT_EQ(imports["zrv320.dll"],
              (std::set<std::string>{"GetZrvCountry", "setextpattline", "setextpattpoint"}));
    EXPECT_EQ(imports["zrvDX320.dll"], (std::set<std::string>{"close_info", "create_info_ext", "draw_info"}));
    for (const auto& [library, names] : imports) {
        const std::set<std::string> allowed = {"KERNEL32.dll",        "ADVAPI32.dll", "USER32.dll",
                                               "msvcrt.dll",          "zrv320.dll",   "zrvDX320.dll",
                                               "VemradoFramework.dll"};
        EXPECT_TRUE(allowed.contains(library)) << library;
    }
}

TEST(Load, ImportsBySlotAlone) {
    const Folder folder;
    const std::string file = folder.Write("map.vkm", MapOfLines(2));
    const Module module;
    ASSERT_NE(module.Handle(), nullptr);
    for (const auto& [create, destroy] : {std::pair("CreateVKMInterface", "DestroyVKMInterface"),
                                          std::pair("?CreateVKMInterface@CVKMInterface@@SAPEAV1@XZ",
                                                    "?DestroyVKMInterface@CVKMInterface@@SAXPEAV1@@Z")}) {
        SCOPED_TRACE(create);
        void* importer = module.Export<Create>(create)();
        ASSERT_NE(importer, nullptr);
        ASSERT_EQ(CallSlot<int>(importer, 0, file.c_str(), 0, "", 1, 0.0, 0), 1);
        EXPECT_EQ(CallSlot<int>(importer, 6), 1);
        EXPECT_EQ(CallSlot<int>(importer, 13), 2);
        double point[3] = {-1, -1, -1};
        CallSlot<void>(importer, 7, 0, point);
        EXPECT_EQ(point[0], 0.5);
        EXPECT_EQ(point[1], 0.25);
        EXPECT_EQ(point[2], 0.0);
        EXPECT_EQ(CallSlot<int>(importer, 14, 0), 'L');
        EXPECT_EQ(CallSlot<int>(importer, 6), 1);
        EXPECT_EQ(CallSlot<int>(importer, 6), 0);
        EXPECT_EQ(CallSlot<double>(importer, 21), 1000.0);
        CallSlot<void>(importer, 1);
        module.Export<Destroy>(destroy)(importer);
    }
}

// Bytes of private memory that the process holds.
size_t PrivateBytes() {
    size_t total = 0;
    MEMORY_BASIC_INFORMATION area;
    for (const char* at = nullptr; VirtualQuery(at, &area, sizeof(area)) != 0;) {
        if (area.State == MEM_COMMIT && area.Type == MEM_PRIVATE) total += area.RegionSize;
        at = static_cast<const char*>(area.BaseAddress) + area.RegionSize;
    }
    return total;
}

TEST(Load, AThousandTimesLeavesNothingBehind) {
    const Folder folder;
    const std::string file = folder.Write("map.vkm", MapOfLines(3));
    // As a host has them: its own libraries stay.
    ASSERT_NE(LoadLibraryA("zrv320.dll"), nullptr);
    ASSERT_NE(LoadLibraryA("zrvDX320.dll"), nullptr);
    size_t bytesBefore = 0;
    DWORD handlesBefore = 0;
    for (int round = 0; round < 1010; ++round) {
        if (round == 10) {
            bytesBefore = PrivateBytes();
            GetProcessHandleCount(GetCurrentProcess(), &handlesBefore);
        }
        const Module module;
        ASSERT_NE(module.Handle(), nullptr) << round;
        ASSERT_EQ(FrameworkModuleCount(), 1);
        void* importer = module.Export<Create>("CreateVKMInterface")();
        ASSERT_EQ(CallSlot<int>(importer, 0, file.c_str(), 0, "", 1, 0.0, 0), 1);
        ASSERT_EQ(CallSlot<int>(importer, 6), 1);
        // Every other round leaves the importer and its open file to the unloading.
        if (round % 2 == 0) module.Export<Destroy>("DestroyVKMInterface")(importer);
        if (round % 2 != 0) CallSlot<void>(importer, 1);
    }
    EXPECT_EQ(FrameworkModuleCount(), 0);
    EXPECT_EQ(GetModuleHandleA("Vemrado.dll"), nullptr);
    DWORD handlesAfter = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handlesAfter);
    EXPECT_LE(handlesAfter, handlesBefore + 2);
    EXPECT_EQ(PrivateBytes(), bytesBefore);
    // Nobody else may hold the file for this to succeed; not every system counts handles.
    const HANDLE alone = CreateFileA(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(alone, INVALID_HANDLE_VALUE) << "a round has left its file open";
    if (alone != INVALID_HANDLE_VALUE) CloseHandle(alone);
}

TEST(Load, FailsWhenTheFrameworkRefusesTheModule) {
    const Folder folder;
    for (const char* name : {"load_probe.exe", "Vemrado.dll", "zrv320.dll", "zrvDX320.dll"}) {
        std::filesystem::copy_file(Beside(name), folder.Path(name));
    }
    const std::string probe = folder.Path("load_probe.exe");
    std::filesystem::copy_file(Beside("VemradoFramework.dll"), folder.Path("VemradoFramework.dll"));
    EXPECT_EQ(RunProgram(folder, probe).output, "loaded\r\n");
    std::filesystem::copy_file(Beside("refusing/VemradoFramework.dll"), folder.Path("VemradoFramework.dll"),
                               std::filesystem::copy_options::overwrite_existing);
    EXPECT_EQ(RunProgram(folder, probe).output, "error " + std::to_string(ERROR_DLL_INIT_FAILED) + "\r\n");
}

}  // namespace
}  // namespace windows_test
