// vkm dump: every element of a file in file order, as JSON Lines. The schema is described in
// docs/command-line.md.

#include <memory>

#include "client/system.h"
#include "client/text_encoding.h"
#include "commands.h"
#include "common_options.h"
#include "inputs.h"
#include "json_writer.h"
#include "program.h"
#include "reading.h"
#include "zrvDX320/zrvDX320.h"

namespace vemrado::tools {
namespace {

struct DumpOptions {
    std::string file;
    EncodingChoice encoding;
    int axisOrientation = 1;
};

class ElementListing {
  public:
    ElementListing(StandardOutput& output, client::Encoding encoding) : json(output), decoder(encoding) {}

    void WriteLine(const map::RawLine& line);
    void WriteText(const map::RawText& text);
    const client::TextDecoder& Decoder() const { return decoder; }

  private:
    void WriteElement(const VkmElement& element);

    // A value behind the JSON text that leads to it.
    void Put(std::string_view before, int value);
    void Put(std::string_view before, double value);
    void Put(std::string_view before, std::string_view bytes);
    void Put(std::string_view before, map::Point point);
    void PutType(std::string_view before, int type);

    JsonWriter json;
    client::TextDecoder decoder;
    std::string utf8;
};

void ElementListing::WriteLine(const map::RawLine& line) {
    Put(R"({"kind":"line","layer":)", line.layer);
    json.Raw(R"(,"elements":[)");
    bool first = true;
    for (const VkmElement& element : line.elements) {
        if (!first) json.Raw(",");
        first = false;
        WriteElement(element);
    }
    json.Raw("]}\n");
}

void ElementListing::WriteElement(const VkmElement& element) {
    Put(R"({"point":)", map::Point{element.x, element.y});
    PutType(R"(,"type":)", element.type);
    Put(R"(,"K":)", std::string_view(element.code));
    Put(R"(,"M":)", element.valueM);
    Put(R"(,"R":)", element.valueR);
    Put(R"(,"S":)", element.symbolCode);
    Put(R"(,"U":)", element.valueU);
    json.Raw("}");
}

void ElementListing::WriteText(const map::RawText& text) {
    Put(R"({"kind":"text","layer":)", text.layer);
    Put(R"(,"text":)", text.text);
    Put(R"(,"point":)", text.point);
    Put(R"(,"D":)", text.valueD);
    Put(R"(,"F":)", text.valueF);
    Put(R"(,"H":)", text.scaledH);
    Put(R"(,"K":)", text.code);
    Put(R"(,"U":)", text.valueU);
    json.Raw("}\n");
}

void ElementListing::Put(std::string_view before, int value) {
    json.Raw(before);
    json.Integer(value);
}

void ElementListing::Put(std::string_view before, double value) {
    json.Raw(before);
    json.Real(value);
}

void ElementListing::Put(std::string_view before, std::string_view bytes) {
    json.Raw(before);
    utf8.clear();
    decoder.Append(bytes, utf8);
    json.String(utf8);
}

void ElementListing::Put(std::string_view before, map::Point point) {
    json.Raw(before);
    json.Raw("[");
    json.Real(point.x);
    json.Raw(",");
    json.Real(point.y);
    json.Raw("]");
}

void ElementListing::PutType(std::string_view before, int type) {
    json.Raw(before);
    if (type == 0) return json.Raw(R"("")");
    const char quoted[] = {'"', type == 1 ? '?' : static_cast<char>(type), '"'};
    json.Raw({quoted, sizeof quoted});
}

int RunDump(const DumpOptions& options, Environment& environment) {
    // A progress bar would run through the listing when both go to one terminal.
    if (client::StandardOutputIsTerminal()) InfoSetVisible(0);
    client::Encoding encoding = client::Encoding::windows1250;
    if (!ChooseEncoding(options.encoding, options.file, environment, encoding)) return exitInput;
    map::Importer importer;
    ElementListing listing(environment.output, encoding);
    map::OpenOptions open;
    open.fileName = FindOneInput(options.file);
    open.axisOrientation = options.axisOrientation;
    const ReadingEnd result = ReadElements(importer, open, environment, [&](map::ElementKind kind) {
        if (kind == map::ElementKind::line) {
            listing.WriteLine(importer.Line());
        } else {
            listing.WriteText(importer.Text());
        }
    });
    WarnOfEncoding(options.file, listing.Decoder(), encoding, environment);
    return result.outcome == ReadOutcome::complete ? exitDone : exitInput;
}

}  // namespace

void AddDumpCommand(Program& program) {
    const auto options = std::make_shared<DumpOptions>();
    const CommandText text = {
        "dump",
        "List every element of a file as JSON Lines",
        R"(Writes every element in file order, one JSON object a line. A line carries its elements with point, type letter
and K, M, R, S and U values; a text carries its text in UTF-8, its point and D, F, H, K and U values. Numbers
read back to the same bits.

A file without its closing record loses its last element; the exit code is 1 then.)",
        {{"vkm dump map.vkm > map.jsonl", "list a whole file"},
         {"vkm dump map.vkm | jq 'select(.kind == \"text\") | .text'", "the texts of a map"},
         {"vkm dump --encoding cp852 --orientation=-y,-x old.vkm", "an old file, east and north"},
         {"zcat map.vkm.gz | vkm dump -", "a compressed file"}}};
    CLI::App& command =
        program.Add(text, [options](Environment& environment) { return RunDump(*options, environment); });
    AddFileArgument(command, options->file);
    AddEncodingOption(program, command, options->encoding);
    AddOrientationOption(program, command, options->axisOrientation);
}

}  // namespace vemrado::tools
