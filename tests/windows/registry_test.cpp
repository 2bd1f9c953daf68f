// The data directories as the real registry gives them.

#include "registry.h"

#include <gtest/gtest.h>

#include "support/data_directories.h"

namespace windows_test {
namespace {

struct Value {
    const char* key;
    const char* name;
    const char* text;
    DWORD type = REG_SZ;
};

struct Case {
    const char* what;
    std::initializer_list<Value> values;
    const char* local;
    const char* shared;
};

const Case cases[] = {
    {"no key", {}, "", ""},
    {"both values",
     {{nativeKey, "LocalPath", "D:\\L"}, {nativeKey, "SharedPath", "E:\\S"}},
     "D:\\L",
     "E:\\S"},
    {"shared stands in", {{nativeKey, "SharedPath", "E:\\S"}}, "E:\\S", "E:\\S"},
    {"an empty local is none",
     {{nativeKey, "LocalPath", ""}, {nativeKey, "SharedPath", "E:\\S"}},
     "E:\\S",
     "E:\\S"},
    {"the module's view wins",
     {{nativeKey, "LocalPath", "D:\\L"}, {nodeKey, "LocalPath", "W:\\L"}},
     "D:\\L",
     ""},
    {"the 32-bit view helps out",
     {{nativeKey, "LocalPath", ""}, {nodeKey, "LocalPath", "W:\\L"}},
     "W:\\L",
     ""},
    {"local of the 32-bit view before shared",
     {{nativeKey, "SharedPath", "E:\\S"}, {nodeKey, "LocalPath", "W:\\L"}},
     "W:\\L",
     "E:\\S"},
    {"a text to expand is none",
     {{nativeKey, "LocalPath", "%TEMP%\\L", REG_EXPAND_SZ}, {nodeKey, "LocalPath", "W:\\L"}},
     "W:\\L",
     ""},
    {"several texts are none", {{nativeKey, "LocalPath", "D:\\L", REG_MULTI_SZ}}, "", ""},
    {"bytes are none", {{nativeKey, "SharedPath", "E:\\S", REG_BINARY}}, "", ""},
    {"letters of the system's code page", {{nativeKey, "LocalPath", "D:\\\xE1\xE9"}}, "D:\\\xE1\xE9", ""},
};

TEST(WindowsRegistry, GivesTheDataDirectories) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Registry registry;
        for (const Value& value : c.values) {
            ASSERT_TRUE(registry.Set(value.key, value.name, std::string(value.text), value.type));
        }
        EXPECT_STREQ(vemrado::GetLocalPath().c_str(), c.local);
        EXPECT_STREQ(vemrado::GetSharedPath().c_str(), c.shared);
        EXPECT_EQ(vemrado::GetSymbolDirectory().c_str(), std::string(c.local) + "\\VKMSym\\");
    }
}

TEST(WindowsRegistry, ANumberIsNoDirectory) {
    Registry registry;
    const DWORD number = 0x00636261;  // would read as "abc"
    ASSERT_TRUE(registry.Set(nativeKey, "LocalPath", REG_DWORD, &number, sizeof number));
    EXPECT_STREQ(vemrado::GetLocalPath().c_str(), "");
}

TEST(WindowsRegistry, ATextEndsAtItsFirstZeroCharacter) {
    Registry registry;
    ASSERT_TRUE(registry.Set(nativeKey, "LocalPath", REG_SZ, "D:\\L\0rest", 10));
    EXPECT_STREQ(vemrado::GetLocalPath("x.tb").c_str(), "D:\\L\\x.tb");
    ASSERT_TRUE(registry.Set(nativeKey, "LocalPath", REG_SZ, "D:\\unended", 10));
    EXPECT_STREQ(vemrado::GetLocalPath().c_str(), "D:\\unended");
}

TEST(WindowsRegistry, WithoutASubkeyTheRootIsRead) {
    ASSERT_EQ(RegSetKeyValueA(HKEY_LOCAL_MACHINE, nullptr, "VemradoTest", REG_SZ, "root", 5), ERROR_SUCCESS);
    const auto read = [](const char* name) {
        return vemrado::ReadRegistryString(vemrado::platform::RegistryRoot::localMachine, nullptr, name,
                                           "none");
    };
    EXPECT_STREQ(read("VemradoTest").c_str(), "root");
    EXPECT_STREQ(read("VemradoTestMissing").c_str(), "none");
    RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, nullptr, "VemradoTest");
}

}  // namespace
}  // namespace windows_test
