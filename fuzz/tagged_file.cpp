// The tagged reader against a plain cursor over the bytes: any sequence of operations, on any file; with
// reads that fail, nothing but bytes of the file.

#include <algorithm>
#include <memory>
#include <string>

#include "memory_files.h"
#include "symbols/tagged_file.h"
#include "targets.h"

namespace vemrado_fuzz {
namespace {

using vemrado::CSharedString;
using vemrado::CTaggedFileReader;

constexpr std::string_view types = "%&#$@~!";

bool IsNameByte(unsigned char byte) {
    static const std::string_view others =
        "._\x8A\x8C\x8D\x8E\x8F\x9A\x9C\x9D\x9E\x9F\xA5\xAA\xAF\xB9\xBA\xBC";
    const bool alphanumeric =
        (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
    return alphanumeric || others.find(static_cast<char>(byte)) != std::string_view::npos ||
           (byte >= 0xBE && byte != 0xD7 && byte != 0xDF && byte != 0xF7 && byte != 0xFF);
}

// Where the reader stands: before a header, or before what is left of a value.
struct Cursor {
    explicit Cursor(std::string_view fileBytes) : bytes(fileBytes) {}

    bool ReadHeader();
    void Skip() {
        at = std::min(at + left, bytes.size());
        inValue = false;
    }

    std::string_view bytes;
    size_t at = 4;
    bool inValue = false;
    bool begun = false;  // part of the value has been read
    std::string name;
    size_t type = 0;
    size_t left = 0;
    uint32_t reported = 0;

  private:
    bool ReadNumber(size_t length, uint32_t& number) {
        if (at + length > bytes.size()) {
            at = bytes.size();
            return false;
        }
        number = 0;
        for (size_t i = 0; i < length; ++i) {
            number |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[at++])) << 8 * i;
        }
        return true;
    }
};

bool Cursor::ReadHeader() {
    name.clear();
    type = types.npos;
    for (int i = 0; i < 256; ++i) {
        if (at >= bytes.size()) return false;
        const char byte = bytes[at++];
        if (byte == '=') break;
        if (types.find(byte) != types.npos) {
            type = types.find(byte);
        } else if (!IsNameByte(static_cast<unsigned char>(byte))) {
            return false;
        } else if (type == types.npos) {
            name += byte;
        }
    }
    if (type == types.npos) return false;
    uint32_t size = type < 3 ? 2u << type : 0;
    if (type >= 3 && !ReadNumber(type == 3 ? 2 : 4, size)) return false;
    reported = size;
    left = size;
    if (type == 5 && !ReadNumber(4, reported)) return false;
    inValue = true;
    begun = false;
    return true;
}

class Session {
  public:
    Session(const std::string& bytes, bool withFaults)
        : cursor(bytes), faults(withFaults), valid(bytes.substr(0, 4) == "\xC4\x4A\xB1\x29") {
        files["t"] = bytes;
        room = std::make_unique<char[]>(bytes.size() + 1);
        reader = std::make_unique<CTaggedFileReader>("t", 1);
    }
    ~Session() {
        reader.reset();
        Require(files.openFiles == 0, "every file is closed");
    }

    void Step(unsigned int what, unsigned int number);
    void FailRead(int which) { files.failingRead = which; }

  private:
    bool Usable() const { return valid && !closed; }
    void Next();
    void Read(uint32_t count);
    void Skip();

    Cursor cursor;
    bool faults;
    bool valid;
    bool closed = false;
    vemrado_test::MemoryFiles files;
    std::unique_ptr<char[]> room;
    std::unique_ptr<CTaggedFileReader> reader;
};

void Session::Next() {
    CSharedString name;
    int32_t type = -9;
    uint32_t size = 0;
    const int result = reader->NextRecord(name, type, size);
    if (faults) return;
    if (Usable() && cursor.inValue) cursor.Skip();
    const bool expected = Usable() && cursor.ReadHeader();
    Require(result == (expected ? 1 : 0), "whether there is a record");
    if (!expected) return;
    Require(name.View() == cursor.name, "a record's name");
    Require(type == static_cast<int32_t>(cursor.type) && size == cursor.reported, "a record's type and size");
}

void Session::Read(uint32_t count) {
    // The destination has room for what the file has.
    if (count > cursor.bytes.size()) count = static_cast<uint32_t>(cursor.bytes.size());
    const uint32_t read = reader->ReadValue(room.get(), count);
    Require(read <= cursor.bytes.size() && (count == 0 || read <= count), "no more than was asked for");
    const std::string_view given(room.get(), read);
    if (faults) {
        Require(cursor.bytes.find(given) != std::string_view::npos, "bytes of the file");
        return;
    }
    if (cursor.begun && cursor.inValue && cursor.left == 0) {
        cursor.inValue = false;
        Require(read == 0, "the end of a value");
        return;
    }
    if (!Usable() || (!cursor.inValue && !cursor.ReadHeader()) || cursor.type == 5) {
        Require(read == 0, "no value");
        return;
    }
    const std::string_view expected =
        cursor.bytes.substr(cursor.at, count == 0 ? cursor.left : std::min<size_t>(count, cursor.left));
    Require(given == expected, "a value's bytes");
    cursor.at += read;
    cursor.left -= read;
    cursor.begun = true;
    if (count == 0) cursor.inValue = false;
}

void Session::Skip() {
    const int result = reader->SkipValue();
    if (faults) return;
    Require(result == (Usable() && cursor.inValue ? 1 : 0), "whether there is a value to skip");
    if (cursor.inValue) cursor.Skip();
}

void Session::Step(unsigned int what, unsigned int number) {
    switch (what % 8) {
        case 0:
        case 1:
        case 2:
            return Next();
        case 3:
            return Read(number % 16);
        case 4:
            return Read(0);
        case 5:
            return Skip();
        case 6: {
            const int result = reader->Rewind();
            if (faults) return;
            Require(result == (Usable() ? 1 : 0), "whether there are records");
            cursor = Cursor(cursor.bytes);
            return;
        }
        default:
            if (number % 8 == 0) {
                reader->Close();
                closed = true;
                cursor.inValue = false;
            } else if (!faults && !closed) {
                Require((reader->Check() == vemrado::taggedFileValid) == valid, "whether the file is valid");
            }
            return;
    }
}

// The number of steps, two bytes each, and the read that fails; the rest is the file.
void RunSteps(std::string_view bytes) {
    Script script(bytes);
    const size_t steps = script.Byte() % 64;
    const auto failingRead = static_cast<int>(script.Byte() % 8);
    const size_t scriptSize = std::min(2 * steps, script.Rest().size());
    Script sequence(script.Rest().substr(0, scriptSize));
    const std::string file(script.Rest().substr(scriptSize));
    Session session(file, failingRead != 0);
    session.FailRead(failingRead);
    while (!sequence.Done()) {
        const unsigned int what = sequence.Byte();
        session.Step(what, sequence.Byte());
    }
}

const Target target("tagged_file", RunSteps);

}  // namespace
}  // namespace vemrado_fuzz
