#include "platform/reg_file.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "platform/memory_faults.h"

namespace vemrado::platform {
namespace {

constexpr const char* title = "Windows Registry Editor Version 5.00\r\n";

// Type and data of a value, as "type:bytes"; none when there is no value. The text is copied to its exact
// size, so that the address sanitizer sees a read past it.
std::string Query(const std::string& file, const char* key = "Software\\K", const char* name = "v") {
    const auto copy = std::make_unique<char[]>(file.size());
    file.copy(copy.get(), file.size());
    const std::string_view view(copy.get(), file.size());
    uint32_t type = 0;
    uint32_t size = 12345;
    if (!QueryRegFile(view, key, name, &type, nullptr, &size)) return "none";
    std::string data(size, '?');
    uint32_t room = size;
    EXPECT_TRUE(QueryRegFile(view, key, name, &type, data.data(), &room));
    EXPECT_EQ(room, size);
    if (size != 0) {
        room = size - 1;
        EXPECT_FALSE(QueryRegFile(view, key, name, &type, data.data(), &room));
    }
    return std::to_string(type) + ":" + data;
}

std::string WithZero(std::string text) {
    return text + '\0';
}

// The value v under the key of one value line.
std::string QueryLine(const std::string& line) {
    return Query(title + std::string("\r\n[HKEY_LOCAL_MACHINE\\Software\\K]\r\n") + line + "\r\n");
}

TEST(RegFileTest, ReadsEveryFormOfValue) {
    const struct {
        const char* line;
        std::string value;
    } cases[] = {
        {"\"v\"=\"text\"", WithZero("1:text")},
        {" \t\"V\"\t= \"text\" ; comment", WithZero("1:text")},
        {"\"v\"=\"\"", WithZero("1:")},
        {"\"v\"=\"C:\\\\Maps\\\\ \\\"new\\\"\"", WithZero("1:C:\\Maps\\ \"new\"")},
        {"\"v\"=\"a;b]\"", WithZero("1:a;b]")},
        {"\"\\v\"=\"escaped name\"", WithZero("1:escaped name")},
        {"\"v\"=dword:0000ab12", std::string("4:\x12\xAB\0\0", 6)},
        {"\"v\"=DWORD:1", std::string("4:\1\0\0\0", 6)},
        {"\"v\"=hex:01,a,fF", "3:\x01\x0A\xFF"},
        {"\"v\"=hex:", "3:"},
        {"\"v\"=hex:01,\\\r\n  02,\\ \r\n03", "3:\1\2\3"},
        {"\"v\"=hex(0):", "0:"},
        {"\"v\"=hex(b):01,02", "11:\1\2"},
        {"\"v\"=hex(2):25,00,41,00,0d,01,00,00", WithZero("2:%A\xC4\x8D")},
        {"\"v\"=hex(1):41,00,00,00", WithZero("1:A")},
        {"\"v\"=hex(7):41,00,00,00,42,00,00,00,00,00", std::string("7:A\0B\0\0", 7)},
        {"\"v\"=hex(2):3d,d8,00,de,00,d8,41,00,00,dc,3d,d8,00,e0",
         "2:\xF0\x9F\x98\x80\xEF\xBF\xBD"
         "A\xEF\xBF\xBD\xEF\xBF\xBD\xEE\x80\x80"},
        {"\"w\"=\"other\"\n\"v\"=\"after line feed\"", WithZero("1:after line feed")},
        {"\"v\"=\"first\"\r\"v\"=\"second\"", WithZero("1:second")},
        {"\"v\"=\"first\"\r\n\"V\"=-", "none"},
        {"\"v\"=-\r\n\"v\"=\"again\"", WithZero("1:again")},
        {"@=\"default\"", "none"},
        {";\"v\"=\"comment\"", "none"},
        // Lines that do not parse change nothing.
        {"\"v\"=\"kept\"\r\n\"v\"=\"open", WithZero("1:kept")},
        {"\"v\"=\"kept\"\r\n\"v\"=\"x\" y", WithZero("1:kept")},
        {"\"v\"=\"kept\"\r\n\"v\"=dword:", WithZero("1:kept")},
        {"\"v\"=\"kept\"\r\n\"v\"=dword:123456789", WithZero("1:kept")},
        {"\"v\"=\"kept\"\r\n\"v\"=hex:1,100", WithZero("1:kept")},
        {"\"v\"=\"kept\"\r\n\"v\"=hex(:1", WithZero("1:kept")},
        {"\"v\"=\"kept\"\r\n\"v\"=hex(g):1", WithZero("1:kept")},
        {"\"v\"=\"kept\"\r\n\"v\"=what", WithZero("1:kept")},
        {"\"v\"=\"kept\"\r\n\"v\"", WithZero("1:kept")},
        {"\"v\"=\"kept\"\r\nv=\"x\"", WithZero("1:kept")},
        {"\"vv\"=\"x\"", "none"},
        {"\"\"=\"x\"", "none"},
    };
    for (const auto& test : cases) EXPECT_EQ(QueryLine(test.line), test.value) << test.line;
}

TEST(RegFileTest, FindsItsKey) {
    const struct {
        const char* keys;
        const char* value;
    } cases[] = {
        {"[HKEY_LOCAL_MACHINE\\Software\\K]\n\"v\"=hex:1", "3:\1"},
        {"  [hkey_local_machine\\SOFTWARE\\k] ; \n\"v\"=hex:1", "3:\1"},
        {"[HKEY_CURRENT_USER\\Software\\K]\n\"v\"=hex:1", "none"},
        {"[HKEY_LOCAL_MACHINES\\Software\\K]\n\"v\"=hex:1", "none"},
        {"[HKEY_LOCAL_MACHINE\\Software\\K\\L]\n\"v\"=hex:1", "none"},
        {"[HKEY_LOCAL_MACHINE\\Software\\K\n\"v\"=hex:1", "none"},
        {"[HKEY_LOCAL_MACHINE\\Software\\K]\n\"v\"=hex:1\n[HKEY_LOCAL_MACHINE\\Software\\L]\n\"v\"=hex:2",
         "3:\1"},
        {"[HKEY_LOCAL_MACHINE\\Software\\K]\n\"v\"=hex:1\n[x\n\"v\"=hex:2", "3:\1"},
        {"[HKEY_LOCAL_MACHINE\\Software\\K]\n\"v\"=hex:1\n[HKEY_LOCAL_MACHINE\\Software\\K]\n\"v\"=hex:2",
         "3:\2"},
        {"[HKEY_LOCAL_MACHINE\\Software\\K]\n\"v\"=hex:1\n[-HKEY_LOCAL_MACHINE\\software\\k]\n\"v\"=hex:2",
         "none"},
        {"[HKEY_LOCAL_MACHINE\\Software\\K]\n\"v\"=hex:1\n[-HKEY_LOCAL_MACHINE\\Software]", "none"},
        {"[HKEY_LOCAL_MACHINE\\Software\\K]\n\"v\"=hex:1\n[-HKEY_LOCAL_MACHINE]", "none"},
        {"[HKEY_LOCAL_MACHINE\\Software\\K]\n\"v\"=hex:1\n[]\n\"v\"=hex:2", "3:\1"},
        {"[HKEY_LOCAL_MACHINE\\Software\\K]\n\"v\"=hex:1\n[-HKEY_LOCAL_MACHINE\\Soft]", "3:\1"},
        {"[HKEY_LOCAL_MACHINE\\Software\\K]\n\"v\"=hex:1\n[-HKEY_LOCAL_MACHINE\\Software\\K\\L]", "3:\1"},
    };
    for (const auto& test : cases) EXPECT_EQ(Query(std::string(title) + test.keys), test.value) << test.keys;

    const std::string root = std::string(title) + "[HKEY_LOCAL_MACHINE]\n@=hex:1\n\"v\"=hex:2\n";
    EXPECT_EQ(Query(root, nullptr, nullptr), "3:\1");
    EXPECT_EQ(Query(root, "", "v"), "3:\2");
}

std::string Utf16(const std::u16string& text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

TEST(RegFileTest, TakesBothEncodingsAndChecksItsTitle) {
    const std::string rest = "\n[HKEY_LOCAL_MACHINE\\Software\\K]\n\"v\"=\"\xC4\x8D\"\n";
    const std::string value = WithZero("1:\xC4\x8D");
    const std::string plain = "Windows Registry Editor Version 5.00";
    EXPECT_EQ(Query(plain + rest), value);
    EXPECT_EQ(Query("\xEF\xBB\xBF" + plain + " \r" + rest), value);
    const std::u16string wide =
        u"\uFEFFWindows Registry Editor Version "
        u"5.00\r\n[HKEY_LOCAL_MACHINE\\Software\\K]\r\n\"v\"=\"\u010D\"\r\n";
    EXPECT_EQ(Query(Utf16(wide)), value);
    EXPECT_EQ(Query(Utf16(wide) + "x"), value) << "half a character at the end";
    memoryCallsLeft = 0;
    EXPECT_EQ(Query(Utf16(wide)), "none");
    memoryCallsLeft = -1;
    for (const char* other :
         {"", "REGEDIT4", "Windows Registry Editor Version 5.000", "windows registry editor version 5.00"}) {
        EXPECT_EQ(Query(other + rest), "none") << other;
    }
    std::string large = plain + rest;
    large.resize(largestRegFile, '\n');
    EXPECT_EQ(Query(large), value);
    EXPECT_EQ(Query(large + "\n"), "none");
}

// Whatever a file is cut to, it gives the last value that parses. A list cut behind the backslash that
// continues it does not.
TEST(RegFileTest, EveryPrefixIsSafe) {
    const std::string whole =
        title + std::string("[HKEY_LOCAL_MACHINE\\Software\\K]\r\n\"v\"=\"a\\\\\"\r\n\"v\"=dword:7\r\n") +
        "\"v\"=hex(2):41,00,\\\r\n 42,00\r\n[-HKEY_LOCAL_MACHINE\\Software\\K]\r\n";
    std::string values = ".";  // the first character of each answer that differs from the one before
    for (size_t length = 0; length <= whole.size(); ++length) {
        const char first = Query(whole.substr(0, length)).front();
        if (values.back() != first) values += first;
    }
    EXPECT_EQ(values, ".n14242n");
}

}  // namespace
}  // namespace vemrado::platform
