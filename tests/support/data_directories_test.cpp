// Where the symbology is looked for.

#include "support/data_directories.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "temporary_directory.h"

namespace vemrado_test {
namespace {

using namespace vemrado;

TEST(DataDirectories, PathsAreJoinedByABackslash) {
    const struct {
        const char* relative;
        const char* base;
        const char* path;
    } cases[] = {
        {"x.tb", "C:\\d", "C:\\d\\x.tb"},
        {"x.tb", "C:\\d\\", "C:\\d\\x.tb"},
        {"x.tb", "", "\\x.tb"},
        {"Q:x.tb", "C:\\d", "Q:x.tb"},
        {"\\\\srv\\x", "C:\\d", "\\\\srv\\x"},
        {"\\x", "C:\\d", "C:\\d\\\\x"},
        {"", "C:\\d", "C:\\d"},
        {nullptr, "C:\\d", "C:\\d"},
        {"1:", "b", "1:"},
        {"/x", "C:/d/", "C:/d/\\/x"},
        {"x", "b", "b\\x"},
        {":x", "b", "b\\:x"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(MakeFullPath(each.relative, each.base), each.path);
    }
}

#if !defined(_WIN32)
class Registry : public testing::Test {
  protected:
    Registry() { setenv("VEMRADO_REGISTRY", path.c_str(), 1); }
    ~Registry() override { unsetenv("VEMRADO_REGISTRY"); }
    // Values of the native key and of the 32-bit view's, as lines of the file.
    void Write(const std::string& native, const std::string& narrow) {
        std::ofstream(path)
            << "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\Software\\Zorvat\\Ini\\Velka]\n"
            << native << "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Zorvat\\Ini\\Velka]\n"
            << narrow << "\n";
    }

    const TemporaryDirectory directory;
    const std::string path = directory.Path("directories.reg");
};

TEST_F(Registry, NamesTheDirectories) {
    const struct {
        const char* native;
        const char* narrow;
        const char* local;
        const char* shared;
    } cases[] = {
        {"", "", "", ""},
        {"\"LocalPath\"=\"D:\\\\Data\"\n\"SharedPath\"=\"E:\\\\S\"", "", "D:\\Data", "E:\\S"},
        {"\"LocalPath\"=\"D:\\\\Data\\\\\"", "\"LocalPath\"=\"X:\"", "D:\\Data\\", ""},
        {"\"LocalPath\"=\"\"\n\"SharedPath\"=\"E:\"", "", "E:", "E:"},
        {"\"LocalPath\"=\"\"", "\"LocalPath\"=\"N:\"\n\"SharedPath\"=\"M:\"", "N:", "M:"},
        {"\"LocalPath\"=dword:00000001", "", "", ""},
        {"\"LocalPath\"=hex(2):44,00,3a,00,00,00", "\"SharedPath\"=\"M:\"", "M:", "M:"},
    };
    for (const auto& each : cases) {
        Write(each.native, each.narrow);
        EXPECT_EQ(GetLocalPath(), each.local) << each.native << each.narrow;
        EXPECT_EQ(GetSharedPath(), each.shared) << each.native << each.narrow;
        EXPECT_EQ(GetSymbolDirectory(), String(each.local) + "\\VKMSym\\");
        EXPECT_EQ(GetLocalPath("x"), *each.local == '\0' ? String() : MakeFullPath("x", each.local));
        EXPECT_EQ(GetSharedPath("x"), *each.shared == '\0' ? String() : MakeFullPath("x", each.shared));
    }
    EXPECT_EQ(ReadRegistryString(platform::RegistryRoot::localMachine, "No\\Key", "LocalPath", "default"),
              "default");
}
#endif

}  // namespace
}  // namespace vemrado_test
