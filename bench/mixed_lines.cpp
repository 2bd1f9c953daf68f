// Writes a VKM file of short lines that no processor can foretell, the same on every machine:
//
//   bench_mixed_lines BYTES FILE
//
// Lines of one to eight elements, and every fifth record a symbol or a text with size and rotation. Numbers,
// codes and texts have different lengths.

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

class Writer {
  public:
    explicit Writer(std::FILE* target) : file(target) {}

    int64_t Written() const { return written; }

    template <class... Values>
    void Line(const char* form, Values... values) {
        if constexpr (sizeof...(values) == 0) {
            written += std::fprintf(file, "%s", form);
        } else {
            written += std::fprintf(file, form, values...);
        }
    }

    void Polyline() {
        Line("&L P %.2f %.2f", Coordinate(), Coordinate());
        Code();
        for (int count = Below(8); count > 0; --count) {
            Line(" %c %.2f %.2f", Below(12) == 0 ? 'C' : 'L', Coordinate(), Coordinate());
            Code();
        }
    }
    void Symbol() {
        Line("&L P %.2f %.2f K=%d S=%d U=%.2f\n", Coordinate(), Coordinate(), Number(), Number(),
             Below(40000) / 100.0);
    }
    void Text() {
        Line("&T %.2f %.2f \"%d/%d\" K=%d H=%.1f U=%.2f\n", Coordinate(), Coordinate(), Number(), Below(20),
             1001 + Below(18), Below(90) / 10.0, Below(40000) / 100.0);
    }
    int Below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }

  private:
    // Of three to seven digits before the full stop.
    double Coordinate() { return Number() + (Below(2) == 0 ? 0 : 1040000) + Below(100) / 100.0; }
    // Of one to five digits.
    int Number() { return Below(2) == 0 ? Below(500) : Below(60000); }
    void Code() {
        if (Below(6) != 0) Line(" K=%d", Number());
        Line("\n");
    }

    std::FILE* file;
    int64_t written = 0;
    std::minstd_rand random{7};
};

}  // namespace

int main(int argc, char** argv) {
    std::FILE* const file = argc == 3 ? std::fopen(argv[2], "wb") : nullptr;
    if (file == nullptr) {
        std::fputs("usage: bench_mixed_lines BYTES FILE\n", stderr);
        return 2;
    }
    const int64_t size = std::atoll(argv[1]);
    Writer writer(file);
    writer.Line("&V S-JTSK 0 0\n&R 1 1 0 0 1000 A\n&U 1\n");
    while (writer.Written() < size) {
        if (writer.Below(5) != 0) {
            writer.Polyline();
        } else if (writer.Below(2) == 0) {
            writer.Symbol();
        } else {
            writer.Text();
        }
    }
    writer.Line("&K\n");
    return std::fclose(file) == 0 ? 0 : 1;
}
