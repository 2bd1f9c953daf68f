#include "options.h"

#include <charconv>
#include <limits>
#include <string_view>

namespace generate {

const char* const usageText =
    R"(Usage: vkm-generate (--sheets N | --size BYTES) [options]

Writes a made-up cadastral map as a VKM file: streets, parcels, buildings, a stream, names and numbers, the same for the
same seed on every machine. No place, street or number in it is real. Memory does not grow with the size.

  --sheets N        write N map sheets (625 by 500 m at 1:1000)
  --size BYTES      write whole sheets until the file has at least this size; k, M and G are 1024, 1024^2, 1024^3
  --seed N          another country for another number (default 1)
  --scale N         map scale 500, 1000 (default) or 2000; coordinates have three decimals at 500, else two
  --relative        coordinates relative to offsets that each sheet sets
  --plain-lines     two-point lines only, for measurements
  --stress          the same map in odd but well-defined forms: blanks, tabs, quote characters, numbers with exponents,
                    overlong lines, unknown records, CR LF
  --threads N       sheets made at the same time (default: one for each processor); the output is the same
  -o FILE           write to a file instead of standard output

Examples:
  vkm-generate --sheets 4 -o town.vkm
  vkm-generate --size 1G --plain-lines > lines.vkm
)";

namespace {

template <typename Integer>
bool ReadNumber(std::string_view text, Integer& value) {
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    return fault == std::errc{} && end == text.data() + text.size();
}

bool ReadSize(std::string_view text, uint64_t& size) {
    unsigned shift = 0;
    if (!text.empty()) {
        switch (text.back()) {
            case 'k':
            case 'K':
                shift = 10;
                break;
            case 'M':
                shift = 20;
                break;
            case 'G':
                shift = 30;
                break;
            default:
                break;
        }
    }
    if (shift > 0) text.remove_suffix(1);
    if (!ReadNumber(text, size) || size > (std::numeric_limits<uint64_t>::max() >> shift)) return false;
    size <<= shift;
    return size > 0;
}

bool SetValue(std::string_view name, std::string_view value, Options& options) {
    if (name == "--seed") return ReadNumber(value, options.seed);
    if (name == "--sheets") return ReadNumber(value, options.sheets) && options.sheets > 0;
    if (name == "--size") return ReadSize(value, options.size);
    if (name == "--threads")
        return ReadNumber(value, options.threads) && options.threads > 0 && options.threads <= 256;
    if (name == "--scale") {
        return ReadNumber(value, options.scale) &&
               (options.scale == 500 || options.scale == 1000 || options.scale == 2000);
    }
    options.output = value;  // -o
    return !value.empty();
}

bool IsValueOption(std::string_view name) {
    return name == "--seed" || name == "--sheets" || name == "--size" || name == "--threads" ||
           name == "--scale" || name == "-o";
}

}  // namespace

bool ParseOptions(int count, const char* const* arguments, Options& options, std::string& error) {
    for (int i = 1; i < count; ++i) {
        const std::string_view name = arguments[i];
        if (name == "--relative") {
            options.relative = true;
        } else if (name == "--plain-lines") {
            options.plainLines = true;
        } else if (name == "--stress") {
            options.form = RecordForm::odd;
        } else if (name == "--help" || name == "-h") {
            options.help = true;
            return true;
        } else if (!IsValueOption(name)) {
            error = "unknown option " + std::string(name);
            return false;
        } else if (i + 1 >= count) {
            error = std::string(name) + " needs a value";
            return false;
        } else if (const std::string_view value = arguments[++i]; !SetValue(name, value, options)) {
            error = std::string(name) + " does not take " + std::string(value);
            return false;
        }
    }
    if ((options.sheets > 0) == (options.size > 0)) {
        error = "give either --sheets or --size";
        return false;
    }
    if (options.plainLines && options.form == RecordForm::odd) {
        error = "--plain-lines and --stress exclude each other";
        return false;
    }
    return true;
}

}  // namespace generate
