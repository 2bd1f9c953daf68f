// The block file against a plain file: bytes, positions and counted errors of any sequence of operations,
// with reads and opens that fail.

#include <algorithm>
#include <string>

#include "memory_files.h"
#include "symbols/block_file.h"
#include "targets.h"

namespace vemrado_fuzz {
namespace {

using vemrado::CBlockFile;
using vemrado::platform::Origin;

// Any bytes, so that a wrong place shows.
std::string PlainBytes(size_t size) {
    std::string bytes(size, '\0');
    uint32_t state = 1;
    for (char& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

class Model {
  public:
    explicit Model(size_t size) : plain(PlainBytes(size)) {
        files["f"] = plain;
        file.SetName("f");
    }

    void Step(unsigned int what, unsigned int number);
    void Finish() {
        files.failingRead = files.failingOpen = 0;
        files.readLimit = -1;
        while (file.TakeError() != 0) {
        }
        Read(9000);
    }

  private:
    void Read(size_t count);
    void Seek(int64_t offset, unsigned int origin);
    void Length();
    std::string_view Plain(int64_t from, size_t count) const {
        const size_t place = std::min(static_cast<size_t>(from), plain.size());
        return std::string_view(plain).substr(place, count);
    }
    void RequireErrors(uint32_t failures) {
        uint32_t taken = 0;
        while (file.TakeError() != 0) ++taken;
        Require(taken == failures, "failures are counted");
    }

    std::string plain;
    vemrado_test::MemoryFiles files;
    CBlockFile file;
    bool faults = false;
};

// What a read gives are the bytes of its position, and as many of them as there are unless something failed.
void Model::Read(size_t count) {
    const int64_t from = file.Position();
    const std::string_view expected = Plain(from, count);
    std::string bytes(count, '?');
    const int64_t read = file.Read(bytes.data(), static_cast<int64_t>(count));
    const auto given = static_cast<size_t>(std::max<int64_t>(read, 0));
    Require(given <= expected.size() && bytes.compare(0, given, expected.substr(0, given)) == 0, "the bytes");
    Require(file.Position() == from + static_cast<int64_t>(given), "the position behind them");
    if (!faults) {
        Require(read >= 0 && given == expected.size(), "all bytes");
        RequireErrors(0);
    }
    while (file.TakeError() != 0) {
    }
}

void Model::Seek(int64_t offset, unsigned int origin) {
    const int64_t from = file.Position();
    const int64_t base = origin == 0 ? 0 : origin == 1 ? from : static_cast<int64_t>(plain.size());
    const int64_t target = base + offset;
    const int64_t result = file.Seek(offset, static_cast<Origin>(origin));
    const uint32_t errors = file.TakeError();
    while (file.TakeError() != 0) {
    }
    Require(file.Position() >= 0, "a position");
    if (faults) return;
    if (target < 0) {
        // An empty buffer asks the system, which refuses; a filled one stops at the start.
        Require(result == -1 || file.Position() == 0, "nothing before the start");
        return;
    }
    Require(result >= 0 && errors == 0, "a seek that can be done");
    Require(file.Position() == target, "where a seek leads");
    if (origin != 2) Require(result == target, "what a seek returns");
}

void Model::Length() {
    const int64_t from = file.Position();
    const uint32_t length = file.Length();
    const uint32_t errors = file.TakeError();
    Require(length == plain.size() || (faults && length == 0 && errors == 1), "the length");
    Require(file.Position() == from, "the length moves nothing");
}

void Model::Step(unsigned int what, unsigned int number) {
    switch (what % 16) {
        case 0:
        case 1:
        case 2:
            return Read(number % 16);
        case 3:
            return Read(number % 12000);
        case 4:
            return Seek(number % 24000, 0);
        case 5:
        case 6:
            return Seek(static_cast<int64_t>(number % 512) - 256, 1);
        case 7:
            return Seek(static_cast<int64_t>(number % 24000) - 12000, 1);
        case 8:
            return Seek(-static_cast<int64_t>(number % 24000), 2);
        case 9:
            return Length();
        case 10:
            return file.ReleaseHandle();
        case 11:
            Require(file.Seek(number, static_cast<Origin>(3)) == -1, "no such origin");
            return;
        case 12:
            faults = true;
            files.failingRead = files.reads + 1 + static_cast<int>(number % 4);
            return;
        case 13:
            faults = true;
            files.failingOpen = files.opens + 1 + static_cast<int>(number % 4);
            return;
        case 14:
            faults = true;
            files.readLimit = number % 4 == 0 ? -1 : static_cast<int64_t>(number % 16384);
            return;
        default:
            files.mostPerRead = 1 + number;
            return;
    }
}

// A word is the file's length; each step takes three bytes.
void RunSteps(std::string_view bytes) {
    Script script(bytes);
    Model model(script.Word() % 20000);
    for (int steps = 0; steps < 100 && !script.Done(); ++steps) {
        const unsigned int what = script.Byte();
        model.Step(what, script.Word());
    }
    model.Finish();
}

const Target target("block_file", RunSteps);

}  // namespace
}  // namespace vemrado_fuzz
