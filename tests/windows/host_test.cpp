// The module in a host built with the same compiler: files in use, boxes, window messages, stops, exceptions.

#include <stdexcept>

#include "host.h"
#include "import_digest.h"
#include "registry.h"
#include "vemrado/vkm_interface.h"
#include "zrvDX320/zrvDX320.h"

namespace windows_test {
namespace {

class Importer {
  public:
    Importer() : vkm(CreateVKMInterface()) {}
    Importer(const Importer&) = delete;
    Importer& operator=(const Importer&) = delete;
    ~Importer() { DestroyVKMInterface(vkm); }
    CVKMInterface* operator->() const { return vkm; }
    CVKMInterface* Get() const { return vkm; }
    int Open(const std::string& file, int loadSymbology = 0) const {
        return vkm->Open(file.c_str(), loadSymbology, "", 1, 0.0, CVKMInterface::flgSymbols);
    }

  private:
    CVKMInterface* vkm;
};

struct Handle {
    Handle(const std::string& file, DWORD access, DWORD sharing)
        : value(CreateFileA(file.c_str(), access, sharing, nullptr, OPEN_EXISTING, 0, nullptr)) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { CloseHandle(value); }
    HANDLE value;
};

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

TEST(WindowsFile, SharesWithReadersAndRefusesWriters) {
    const struct {
        const char* holder;
        DWORD access;
        DWORD sharing;
        int opens;
    } cases[] = {
        {"a reader that shares with readers", GENERIC_READ, FILE_SHARE_READ, 1},
        {"a reader that shares with all", GENERIC_READ, shareAll, 1},
        {"a reader that shares with none", GENERIC_READ, 0, 0},
        {"a writer that shares with all", GENERIC_WRITE, shareAll, 0},
    };
    const Folder folder;
    const std::string file = folder.Write("map.vkm", MapOfLines(1));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.holder);
        const Boxes boxes;
        const Handle held(file, c.access, c.sharing);
        ASSERT_NE(held.value, INVALID_HANDLE_VALUE);
        const Importer vkm;
        EXPECT_EQ(vkm.Open(file), c.opens);
        ASSERT_EQ(boxes.texts.size(), c.opens == 1 ? 0u : 1u);
        if (c.opens == 0) {
            EXPECT_EQ(boxes.lastStyle, static_cast<unsigned int>(MB_OK | MB_ICONEXCLAMATION));
            EXPECT_NE(boxes.texts[0].find(file), std::string::npos) << boxes.texts[0];
            EXPECT_EQ(boxes.texts[0].find_first_of("\r\n"), std::string::npos) << boxes.texts[0];
        }
    }
}

TEST(WindowsFile, KeepsWritersOutUntilClosed) {
    const Folder folder;
    const std::string file = folder.Write("map.vkm", MapOfLines(1));
    const Importer vkm;
    ASSERT_EQ(vkm.Open(file), 1);
    EXPECT_EQ(Handle(file, GENERIC_WRITE, shareAll).value, INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_NE(Handle(file, GENERIC_READ, shareAll).value, INVALID_HANDLE_VALUE);
    vkm->Close();
    EXPECT_NE(Handle(file, GENERIC_WRITE, shareAll).value, INVALID_HANDLE_VALUE);
}

TEST(WindowsFile, OpensNamesInTheSystemsCodePage) {
    const Folder folder;
    const std::string file = folder.Write("plan.vkm", MapOfLines(1));
    const std::string name = folder.Path("pl\xE1n.vkm");  // 225: the same letter in 1250 and 1252
    ASSERT_TRUE(MoveFileA(file.c_str(), name.c_str()));
    const Boxes boxes;
    const Importer vkm;
    EXPECT_EQ(vkm.Open(name), 1);
    EXPECT_EQ(vkm.Open(folder.Path("ch\xE1ndo.vkm")), 0);
    ASSERT_EQ(boxes.texts.size(), 1u);
    EXPECT_NE(boxes.texts[0].find("ch\xE1ndo.vkm"), std::string::npos) << boxes.texts[0];
}

TEST(WindowsFile, MissingFilesAndFoldersAreOneBoxEach) {
    const Folder folder;
    for (const std::string& file :
         {folder.Path("missing.vkm"), folder.Path("no\\folder.vkm"), folder.Path("")}) {
        SCOPED_TRACE(file);
        const Boxes boxes;
        const Importer vkm;
        EXPECT_EQ(vkm.Open(file), 0);
        ASSERT_EQ(boxes.texts.size(), 1u);
        EXPECT_NE(boxes.texts[0].find(file), std::string::npos) << boxes.texts[0];
        EXPECT_GT(boxes.texts[0].size(), file.size() + 5) << "no reason";
        EXPECT_EQ(vkm->GetScale(), 1000.0);
    }
}

// A window that can receive messages and is never shown.
class Window {
  public:
    Window() {
        WNDCLASSA description = {};
        description.lpfnWndProc = Procedure;
        description.lpszClassName = "VemradoTest";
        description.hInstance = GetModuleHandleA(nullptr);
        RegisterClassA(&description);
        window = CreateWindowA("VemradoTest", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, description.hInstance,
                               nullptr);
        SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() { DestroyWindow(window); }

    HWND window = nullptr;
    int posted = 0;
    int timers = 0;

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
        auto* self = reinterpret_cast<Window*>(GetWindowLongPtrA(window, GWLP_USERDATA));
        if (self != nullptr && message == WM_APP) ++self->posted;
        if (self != nullptr && message == WM_TIMER) ++self->timers;
        return DefWindowProcA(window, message, w, l);
    }
};

TEST(WindowsMessages, ReachWindowProceduresDuringReadNext) {
    const Folder folder;
    const Importer vkm;
    const Window window;
    ASSERT_NE(window.window, nullptr);
    ASSERT_EQ(vkm.Open(folder.Write("map.vkm", MapOfLines(200000))), 1);
    SetTimer(window.window, 1, 10, nullptr);
    int elements = 0;
    int expected = 0;
    for (; vkm->ReadNext() == 1; ++elements) {
        if (elements % 50000 != 0) continue;
        PostMessageA(window.window, WM_APP, 0, 0);
        ++expected;
        EXPECT_EQ(window.posted, expected - 1);  // only the pump delivers
    }
    KillTimer(window.window, 1);
    EXPECT_EQ(elements, 200000);
    EXPECT_EQ(window.posted, expected);
    EXPECT_GT(window.timers, 0);
}

TEST(WindowsMessages, ARequestToQuitIsLeftToTheHost) {
    const Folder folder;
    const Importer vkm;
    ASSERT_EQ(vkm.Open(folder.Write("map.vkm", MapOfLines(200))), 1);
    PostQuitMessage(7);
    while (vkm->ReadNext() == 1) {
    }
    MSG message = {};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(message.wParam, 7u);
}

TEST(WindowsExceptions, AHostOfTheSameCompilerCatchesABadIndex) {
    const Folder folder;
    const Importer vkm;
    ASSERT_EQ(vkm.Open(folder.Write("map.vkm", MapOfLines(1))), 1);
    ASSERT_EQ(vkm->ReadNext(), 1);
    double point[3] = {};
    for (int round = 0; round < 1000; ++round) {
        EXPECT_THROW(vkm->GetElementPoint(-1, point), CInvalidArgException);
        EXPECT_THROW(vkm->GetElementPoint(vkm->GetElementCount(), point), std::invalid_argument);
    }
    EXPECT_EQ(vkm->GetElementCount(), 2);
}

TEST(WindowsExceptions, AFailedReadNamesItsFile) {
    FrameworkFileProvider broken = {};
    broken.open = [](void*, const char*) -> void* {
        static int file;
        return &file;
    };
    broken.read = [](void*, void*, size_t) -> int64_t { return -1; };
    broken.length = [](void*) -> int64_t { return 10; };
    broken.close = [](void*) {};
    FrameworkSetFileProvider(&broken);
    try {
        const Importer vkm;
        vkm.Open("broken.vkm");
        ADD_FAILURE() << "no exception";
    } catch (const CFileException& failure) {
        EXPECT_EQ(failure.FileName(), "broken.vkm");
    }
    FrameworkSetFileProvider(nullptr);
}

TEST(ProgressWindow, TheKeyboardsInterruptStopsTheReading) {
    FreeConsole();
    ASSERT_TRUE(AllocConsole()) << GetLastError();
    const Folder folder;
    const Importer vkm;
    ASSERT_EQ(vkm.Open(folder.Write("map.vkm", MapOfLines(20000))), 1);
    int elements = 0;
    for (; vkm->ReadNext() == 1; ++elements) {
        if (elements == 5000) {
            ASSERT_TRUE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)) << GetLastError();
            // The system tells of the key on a thread of its own.
            for (int i = 0; i < 500 && InfoStopRequested() == 0; ++i) Sleep(10);
        }
    }
    EXPECT_GE(elements, 5000);
    EXPECT_LT(elements, 20000);
    EXPECT_NE(InfoStopRequested(), 0);
}

TEST(UserLanguage, ChoosesTheTexts) {
    const char* expected = std::getenv("EXPECTED_LANGUAGE");
    const std::string language = expected != nullptr ? expected : "en";
    const Folder folder;
    std::filesystem::create_directory(folder.Path("VKMSym"));
    folder.Write("VKMSym/WKOKES.COL", "\n");
    FrameworkSetDataDirectory(folder.Path("").c_str());
    const Boxes boxes;
    const Importer vkm;
    EXPECT_EQ(vkm.Open(folder.Write("map.vkm", MapOfLines(1)), 1), 1);
    FrameworkSetDataDirectory(nullptr);
    ASSERT_EQ(boxes.texts.size(), 1u);
    const std::string text = language == "cs_CZ"   ? "Barvy nebudou importov\xE1ny."
                             : language == "de_DE" ? "Die Datei enth\xE4lt nicht die Tabelle der Farben."
                                                   : "Colors will not be imported.";
    EXPECT_NE(boxes.texts[0].find(text), std::string::npos) << boxes.texts[0];
}

TEST(ForeignHost, ImportsLikeThisOne) {
    const std::string data = SystemPath(VEMRADO_DATA);
    Registry registry;
    ASSERT_TRUE(registry.Set(nativeKey, "LocalPath", data + "\\symbology"));
    const Folder folder;
    for (const auto& entry : std::filesystem::directory_iterator(data)) {
        if (entry.path().extension() != ".vkm") continue;
        const std::string sample = entry.path().string();
        SCOPED_TRACE(sample);
        const Boxes boxes;
        const Importer vkm;
        const ImportDigest expected = Import(vkm.Get(), sample.c_str());
        ASSERT_EQ(expected.opened, 1);
        ASSERT_GT(expected.elements, 0);
        EXPECT_TRUE(boxes.texts.empty()) << boxes.texts[0];
        for (const char* host : {"foreign_host.exe", "foreign_host_public.exe"}) {
            const RunResult run = RunProgram(folder, Beside(host) + " " + sample);
            EXPECT_EQ(run.exitCode, 0u) << host;
            EXPECT_EQ(run.output,
                      std::to_string(expected.elements) + " " + std::to_string(expected.hash) + " ");
        }
    }
}

TEST(WindowsRegistryOfTheHost, NamesTheTables) {
    Registry registry;
    const Folder folder;
    const std::string map = folder.Write("map.vkm", MapOfLines(1));
    const auto openAndCountBoxes = [&map](const Boxes& boxes) {
        const Importer vkm;
        EXPECT_EQ(vkm.Open(map, 1), 1);
        return boxes.texts.size();
    };
    EXPECT_EQ(openAndCountBoxes(Boxes()), 1u) << "no tables, no box";
    ASSERT_TRUE(registry.Set(nodeKey, "SharedPath", SystemPath(VEMRADO_DATA) + "\\symbology"));
    EXPECT_EQ(openAndCountBoxes(Boxes()), 0u);
    ASSERT_TRUE(registry.Set(nativeKey, "LocalPath", folder.Path("nowhere")));
    EXPECT_EQ(openAndCountBoxes(Boxes()), 1u) << "the local path wins";
}

}  // namespace
}  // namespace windows_test
