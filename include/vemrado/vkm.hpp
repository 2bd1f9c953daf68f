// Vemrado's C++ interface: vkm.h for C++17 and later, in this header alone.
//
//     for (const vkm::Element& element : vkm::Reader("map.vkm"))
//         std::cout << "layer " << element.Layer() << ": " << element.PointCount() << " points\n";
//
// Everything frees itself. Failures are thrown as vkm::Error. Views (Element, Span, std::string_view) are
// valid as long as vkm.h says: those of an element until the next one is read. Units and meanings are those
// of vkm.h; so are threads: one reader serves one thread at a time.

#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vemrado/vkm.h"

namespace vkm {

// What went wrong; what() names file, line and reason.
class Error : public std::runtime_error {
  public:
    Error(vkm_status errorStatus, const std::string& text, std::string file = {}, std::uint64_t line = 0)
        : std::runtime_error(text), status(errorStatus), fileName(std::move(file)), fileLine(line) {}

    vkm_status Status() const { return status; }
    const std::string& File() const { return fileName; }  // empty where no file has to do with it
    std::uint64_t Line() const { return fileLine; }       // from 1; 0: none

  private:
    vkm_status status;
    std::string fileName;
    std::uint64_t fileLine;
};

namespace detail {

[[noreturn]] inline void Throw(vkm_status status, vkm_error* error) {
    if (error == nullptr) throw Error(status, vkm_status_text(status));
    const Error thrown(vkm_error_status(error), vkm_error_text(error), vkm_error_file(error),
                       vkm_error_line(error));
    vkm_error_free(error);
    throw thrown;
}

}  // namespace detail

// Elements in a row that belong to somebody else.
template <typename Value>
class Span {
  public:
    Span() = default;
    Span(const Value* first, std::size_t length) : values(first), count(length) {}

    const Value* begin() const { return values; }
    const Value* end() const { return values + count; }
    const Value* data() const { return values; }
    std::size_t size() const { return count; }
    bool empty() const { return count == 0; }
    const Value& operator[](std::size_t place) const { return values[place]; }
    const Value& front() const { return *values; }
    const Value& back() const { return values[count - 1]; }

  private:
    const Value* values = nullptr;
    std::size_t count = 0;
};

struct Point {
    double x;
    double y;
};
static_assert(sizeof(Point) == 2 * sizeof(double), "points lie as pairs of doubles");

struct Box {
    double minX, minY, maxX, maxY;
};

// A view of a line or a text.
class Element {
  public:
    explicit Element(const vkm_element& viewed) : element(&viewed) {}

    bool IsLine() const { return element->kind == VKM_LINE; }
    bool IsText() const { return element->kind == VKM_TEXT; }
    std::int32_t Layer() const { return element->layer; }
    std::string_view LayerName() const { return element->layer_name; }
    std::uint64_t FileLine() const { return element->file_line; }  // on which it begins

    // Of a line its points, of a text its insertion point.
    Span<vkm::Point> Points() const {
        return {reinterpret_cast<const vkm::Point*>(element->points), element->point_count};
    }
    std::size_t PointCount() const { return element->point_count; }

    // Of lines, an entry for each point.
    std::string_view Types() const { return {element->types, element->types ? element->point_count : 0}; }
    std::string_view Code(std::size_t place) const { return element->codes[place]; }
    Span<std::int32_t> CodeNumbers() const { return OfLine(element->code_numbers); }
    Span<std::int32_t> PenCodes() const { return OfLine(element->pen_codes); }
    Span<std::int32_t> Symbols() const { return OfLine(element->symbols); }
    Span<double> Scales() const { return OfLine(element->m_values); }
    Span<double> RValues() const { return OfLine(element->r_values); }
    Span<double> Rotations() const { return OfLine(element->u_values); }
    Span<vkm_stroke> Strokes() const { return {element->strokes, element->stroke_count}; }

    // Of texts.
    std::string_view Text() const { return {element->text, element->text_length}; }
    std::int32_t TextCode() const { return element->code; }
    double Height() const { return element->height; }
    double Rotation() const { return element->rotation; }
    std::int32_t Anchor() const { return element->anchor; }
    std::int32_t Face() const { return element->face; }

    // Everything that vkm.h says of it.
    const vkm_element& Raw() const { return *element; }

  private:
    template <typename Value>
    Span<Value> OfLine(const Value* values) const {
        return {values, values != nullptr ? element->point_count : 0};
    }
    const vkm_element* element;
};

// As vkm_options; what is left alone has its default.
struct Options {
    std::string encoding = "windows-1250";
    std::string orientation = "-y,-x";
    std::optional<std::filesystem::path>
        symbology;  // none: the sample symbology; an empty path: no symbology
    std::optional<std::string> crs;
    std::vector<std::int32_t> layers;  // empty: all
    bool splitByCode = true;
    std::int32_t parcelLayer = 1;
    std::int32_t numberLayer = 2;
    std::uint32_t batchRows = 65536;
    vkm_angle_unit angleUnit = VKM_GON;
};

struct Header {
    double scale = 1000;
    bool relative = false;
    vkm::Point origin{0, 0};
    std::string name, date, comments, crs;
};

struct LineStyle {
    std::string name;
    std::uint32_t colour = 0;
    bool visible = true;
    double width = 0;            // mm
    std::vector<double> dashes;  // mm: drawn, gap, drawn, gap, ...
};

struct Symbol {
    std::string name;
    std::vector<std::vector<vkm::Point>> strokes;  // mm around the insertion point, y up
    Box bounds{0, 0, 0, 0};
};

struct Picture {
    std::string format;  // empty: by the ending of the file's name
    int width = 0;       // pixels; 0: as large as on paper
    double dpi = 150;
    bool legend = false;
    std::optional<std::string> title;
    std::optional<Box> box;
    bool symbols = true;
};

class Reader {
  public:
    explicit Reader(const std::filesystem::path& path, const Options& options = {}) {
        const RawOptions raw(options);
        Check([&](vkm_error** error) { return Own(vkm_open(Utf8(path).c_str(), &raw.options, error)); });
    }
    // Reads from bytes of the caller's, which live longer than the reader and its streams.
    Reader(std::string_view bytes, const char* name, const Options& options = {}) {
        const RawOptions raw(options);
        Check([&](vkm_error** error) {
            return Own(
                vkm_open_memory(bytes.data(), bytes.size(), name, &raw.options, nullptr, nullptr, error));
        });
    }
    Reader(Reader&& other) noexcept : reader(std::exchange(other.reader, nullptr)) {}
    Reader& operator=(Reader&& other) noexcept {
        std::swap(reader, other.reader);
        return *this;
    }
    ~Reader() { vkm_close(reader); }

    // The next element; none at the end.
    std::optional<Element> Next() {
        const vkm_element* element = nullptr;
        vkm_error* error = nullptr;
        const vkm_status status = vkm_next(reader, &element, &error);
        if (status == VKM_OK) return Element(*element);
        if (status != VKM_END) detail::Throw(status, error);
        return std::nullopt;
    }

    // One passage over the elements that are left.
    class Iterator {
      public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Element;
        using difference_type = std::ptrdiff_t;
        using pointer = const Element*;
        using reference = const Element&;

        Iterator() = default;
        explicit Iterator(Reader* from) : reader(from) { ++*this; }
        reference operator*() const { return *current; }
        pointer operator->() const { return &*current; }
        Iterator& operator++() {
            current = reader->Next();
            if (!current) reader = nullptr;
            return *this;
        }
        void operator++(int) { ++*this; }
        bool operator==(const Iterator& other) const { return reader == other.reader; }
        bool operator!=(const Iterator& other) const { return reader != other.reader; }

      private:
        Reader* reader = nullptr;
        std::optional<Element> current;
    };
    Iterator begin() { return Iterator(this); }
    Iterator end() { return {}; }

    void Rewind() {
        Check([&](vkm_error** error) { return vkm_rewind(reader, error); });
    }

    // Whether the closing record has been read: no element was lost at the end of the file.
    bool Complete() const { return vkm_complete(reader) != 0; }
    std::uint64_t BadBytes() const { return vkm_bad_bytes(reader); }
    std::uint64_t LeftOut() const { return vkm_left_out(reader); }

    vkm::Header Header() const {
        vkm_header raw = {};
        raw.size = sizeof raw;
        Check([&](vkm_error** error) { return vkm_get_header(reader, &raw, error); });
        return {raw.scale, raw.relative != 0, {raw.origin[0], raw.origin[1]},
                raw.name,  raw.date,          raw.comments,
                raw.crs};
    }

    // Of all points, by a passage of its own; none for a map without points.
    std::optional<Box> Extent() {
        double box[4] = {};
        const vkm_status status = Check([&](vkm_error** error) { return vkm_extent(reader, box, error); });
        if (status == VKM_NOTHING) return std::nullopt;
        return Box{box[0], box[1], box[2], box[3]};
    }

    // None for a code that the symbology lacks.
    std::optional<vkm::LineStyle> LineStyle(std::int32_t code) {
        vkm_line_style raw = {};
        raw.size = sizeof raw;
        const vkm_status status =
            Check([&](vkm_error** error) { return vkm_get_line_style(reader, code, &raw, error); });
        if (status == VKM_NOTHING) return std::nullopt;
        return vkm::LineStyle{
            raw.name, raw.colour, raw.visible != 0, raw.width, {raw.dashes, raw.dashes + raw.dash_count}};
    }
    std::optional<vkm::Symbol> Symbol(std::int32_t code) {
        vkm_symbol raw = {};
        raw.size = sizeof raw;
        const vkm_status status =
            Check([&](vkm_error** error) { return vkm_get_symbol(reader, code, &raw, error); });
        if (status == VKM_NOTHING) return std::nullopt;
        vkm::Symbol symbol{raw.name, {}, {raw.bounds[0], raw.bounds[1], raw.bounds[2], raw.bounds[3]}};
        const auto* points = reinterpret_cast<const vkm::Point*>(raw.points);
        for (std::size_t i = 0; i < raw.stroke_count; ++i) {
            const std::size_t end = i + 1 < raw.stroke_count ? raw.strokes[i + 1] : raw.point_count;
            symbol.strokes.emplace_back(points + raw.strokes[i], points + end);
        }
        return symbol;
    }
    Span<std::int32_t> LineCodes() { return Codes(vkm_line_codes); }
    Span<std::int32_t> SymbolCodes() { return Codes(vkm_symbol_codes); }

    // A stream of Arrow's, which is the caller's to release and may outlive the reader.
    void Stream(vkm_table table, ArrowArrayStream* stream) {
        Check([&](vkm_error** error) { return vkm_stream(reader, table, stream, error); });
    }

    // One stream for each of the tables, in one passage over the source.
    template <std::size_t count>
    void Streams(const vkm_table (&tables)[count], ArrowArrayStream (&streams)[count]) {
        Check([&](vkm_error** error) { return vkm_streams(reader, tables, count, streams, error); });
    }

    // Draws the map to a file.
    void Render(const std::filesystem::path& path, const Picture& picture = {}) {
        vkm_picture raw;
        vkm_picture_init(&raw);
        raw.format = picture.format.empty() ? nullptr : picture.format.c_str();
        raw.width = picture.width;
        raw.dpi = picture.dpi;
        raw.legend = picture.legend ? 1 : 0;
        raw.title = picture.title ? picture.title->c_str() : nullptr;
        raw.box = picture.box ? &picture.box->minX : nullptr;
        raw.symbols = picture.symbols ? 1 : 0;
        Check([&](vkm_error** error) { return vkm_render(reader, &raw, Utf8(path).c_str(), error); });
    }

    // For what this header does not wrap.
    vkm_reader* Raw() const { return reader; }

  private:
    struct RawOptions {
        explicit RawOptions(const Options& from)
            : symbology(from.symbology ? Utf8(*from.symbology) : std::string()) {
            vkm_options_init(&options);
            options.encoding = from.encoding.c_str();
            options.orientation = from.orientation.c_str();
            options.symbology = from.symbology ? symbology.c_str() : nullptr;
            options.crs = from.crs ? from.crs->c_str() : nullptr;
            options.layers = from.layers.empty() ? nullptr : from.layers.data();
            options.layer_count = from.layers.size();
            options.split_by_code = from.splitByCode ? 1 : 0;
            options.parcel_layer = from.parcelLayer;
            options.number_layer = from.numberLayer;
            options.batch_rows = from.batchRows;
            options.angle_unit = from.angleUnit;
        }
        std::string symbology;
        vkm_options options;
    };

    static std::string Utf8(const std::filesystem::path& path) {
        const auto text = path.u8string();
        return {reinterpret_cast<const char*>(text.data()), text.size()};
    }

    template <typename Call>
    static vkm_status Check(Call call) {
        vkm_error* error = nullptr;
        const vkm_status status = call(&error);
        if (status < 0) detail::Throw(status, error);
        return status;
    }
    vkm_status Own(vkm_reader* opened) {
        reader = opened;
        return opened != nullptr ? VKM_OK : VKM_ERROR_MEMORY;
    }
    template <typename Function>
    Span<std::int32_t> Codes(Function function) {
        const std::int32_t* codes = nullptr;
        std::size_t count = 0;
        Check([&](vkm_error** error) { return function(reader, &codes, &count, error); });
        return {codes, count};
    }

    vkm_reader* reader = nullptr;
};

namespace detail {

// Runs a function of vkm.h that tells of items one by one. What the caller's function throws ends it and
// comes out here.
template <typename Item, typename Told, typename Run>
void TellOfEach(Told& told, Run run) {
    struct Call {
        Told& told;
        std::exception_ptr thrown;
    } call{told, nullptr};
    vkm_error* error = nullptr;
    const vkm_status status = run(
        [](void* context, const Item* item) -> std::int32_t {
            Call& callers = *static_cast<Call*>(context);
            try {
                callers.told(*item);
                return 0;
            } catch (...) {
                callers.thrown = std::current_exception();
                return 1;
            }
        },
        &call, &error);
    if (!call.thrown && status < 0) Throw(status, error);
    vkm_error_free(error);
    if (call.thrown) std::rethrow_exception(call.thrown);
}

}  // namespace detail

// A finding of Check; valid during the call.
using Finding = vkm_finding;

// Calls found(const Finding&) for everything that is wrong with the map.
template <typename Found>
void Check(const Reader& reader, Found found) {
    detail::TellOfEach<Finding>(found, [&](vkm_on_finding call, void* context, vkm_error** error) {
        return vkm_check(reader.Raw(), nullptr, call, context, error);
    });
}

// A change of Diff; valid during the call.
using Change = vkm_change;

// Calls changed(const Change&) for everything that differs between two states of a map. A text has moved when
// it lies farther away than the tolerance, in metres; none: that of vkm.h.
template <typename Changed>
void Diff(const Reader& before, const Reader& after, Changed changed,
          std::optional<double> tolerance = std::nullopt) {
    vkm_diff_options options;
    vkm_diff_options_init(&options);
    if (tolerance) options.tolerance = *tolerance;
    detail::TellOfEach<Change>(changed, [&](vkm_on_change call, void* context, vkm_error** error) {
        return vkm_diff(before.Raw(), after.Raw(), &options, call, context, error);
    });
}

}  // namespace vkm
