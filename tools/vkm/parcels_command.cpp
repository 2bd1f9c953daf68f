// vkm parcels: what the boundary lines of a map enclose, with numbers, areas and neighbours.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <tuple>

#include "client/standard_input.h"
#include "client/system.h"
#include "client/text_encoding.h"
#include "commands.h"
#include "common_options.h"
#include "inputs.h"
#include "map/parcel_material.h"
#include "program.h"
#include "reading.h"
#include "stop_watch.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

struct ParcelOptions {
    std::string file;
    map::ParcelLayers layers;
    bool csv = false;
    bool json = false;
    EncodingChoice encoding;
};

constexpr const char* noNumber = "?";

std::string AreaText(double squareMetres) {
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", squareMetres);
    return text;
}

// 98, 99/1, 99/2, 100: as people count, those without a number last.
bool CountsBefore(const map::Parcel& a, const map::Parcel& b) {
    const auto parts = [](const map::Parcel& parcel) {
        long long stem = 0;
        long long share = 0;
        const char* const end = parcel.number.data() + parcel.number.size();
        const auto read = std::from_chars(parcel.number.data(), end, stem);
        if (read.ptr != end && *read.ptr == '/') std::from_chars(read.ptr + 1, end, share);
        return std::tuple(parcel.number.empty(), stem, share, std::string_view(parcel.number));
    };
    return parts(a) < parts(b);
}

// Parcels in the order of their numbers, each with the numbers of its neighbours.
class ParcelList {
  public:
    explicit ParcelList(const std::vector<map::Parcel>& all) : parcels(all) {
        for (size_t i = 0; i < parcels.size(); ++i) order.push_back(i);
        std::ranges::stable_sort(order,
                                 [&](size_t a, size_t b) { return CountsBefore(parcels[a], parcels[b]); });
    }

    void WriteTable(StandardOutput& output) const;
    void WriteCsv(StandardOutput& output) const;
    void WriteJson(StandardOutput& output) const;

  private:
    std::vector<const map::Parcel*> NeighboursOf(const map::Parcel& parcel) const {
        std::vector<const map::Parcel*> list;
        for (const uint32_t number : parcel.area.neighbours) list.push_back(&parcels[number]);
        std::ranges::stable_sort(list, [](const auto* a, const auto* b) { return CountsBefore(*a, *b); });
        return list;
    }
    std::string NeighbourText(const map::Parcel& parcel, const char* separator) const {
        std::string text;
        for (const map::Parcel* neighbour : NeighboursOf(parcel))
            text.append(text.empty() ? "" : separator).append(Shown(*neighbour));
        return text;
    }
    static std::string Shown(const map::Parcel& parcel) {
        return parcel.number.empty() ? noNumber : client::Printable(parcel.number);
    }

    const std::vector<map::Parcel>& parcels;
    std::vector<size_t> order;
};

std::string TableRow(std::string_view number, std::string_view area, std::string_view neighbours) {
    constexpr size_t numberWidth = 12;
    constexpr size_t areaWidth = 14;
    return PaddedLeft(number, numberWidth) + ' ' + PaddedLeft(area, areaWidth) + "  " +
           std::string(neighbours) + '\n';
}

void ParcelList::WriteTable(StandardOutput& output) const {
    output.Write(Filled("{} parcels", {std::to_string(parcels.size())}) + "\n");
    output.Write(TableRow(Translated("number"), Translated("area (m2)"), Translated("neighbours")));
    double whole = 0;
    for (const size_t i : order) {
        const map::Parcel& parcel = parcels[i];
        output.Write(TableRow(Shown(parcel), AreaText(parcel.area.size), NeighbourText(parcel, ", ")));
        whole += parcel.area.size;
    }
    output.Write(TableRow(Translated("all"), AreaText(whole), ""));
}

std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\n\r") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char letter : text) quoted.append(letter == '"' ? 2 : 1, letter);
    return quoted + '"';
}

void ParcelList::WriteCsv(StandardOutput& output) const {
    output.Write("number,area,neighbours\n");
    for (const size_t i : order) {
        const map::Parcel& parcel = parcels[i];
        output.Write(CsvField(parcel.number) + ',' + AreaText(parcel.area.size) + ',' +
                     CsvField(NeighbourText(parcel, ";")) + '\n');
    }
}

void ParcelList::WriteJson(StandardOutput& output) const {
    using Json = nlohmann::ordered_json;
    const auto number = [](const map::Parcel& parcel) {
        return parcel.number.empty() ? Json() : Json(parcel.number);
    };
    Json list = Json::array();
    for (const size_t i : order) {
        Json neighbours = Json::array();
        for (const map::Parcel* neighbour : NeighboursOf(parcels[i]))
            neighbours.push_back(number(*neighbour));
        constexpr double hundredths = 100;
        list.push_back({{"number", number(parcels[i])},
                        {"area", std::round(parcels[i].area.size * hundredths) / hundredths},
                        {"neighbours", neighbours}});
    }
    output.Write(list.dump(2) + '\n');
}

void WarnOfFindings(const map::Parcels& made, const std::string& name, Environment& environment) {
    const auto warn = [&](size_t count, Message what) {
        if (count > 0) environment.Warn(name + ": " + Filled(what, {std::to_string(count)}));
    };
    warn(made.freeEnds.size(), "{} free ends of boundaries, which close no parcel");
    warn(made.cutPieces.size(), "{} boundaries between others that close no parcel");
    warn(made.outside.size(), "{} numbers outside any parcel");
    const auto without = std::ranges::count(made.parcels, 0, &map::Parcel::texts);
    warn(static_cast<size_t>(without), "{} parcels without a number");
    const auto several =
        std::ranges::count_if(made.parcels, [](const map::Parcel& p) { return p.texts > 1; });
    warn(static_cast<size_t>(several), "{} parcels with more than one number, the first counts");
    if (made.tooManyCrossings) environment.Warn(name + ": no parcels, for the boundaries cross too often");
}

int RunParcels(const ParcelOptions& options, Environment& environment) {
    if (options.csv && options.json) throw Failure(exitUsage, "--csv and --json exclude each other");
    const std::string file = FindOneInput(options.file);
    client::Encoding encoding = client::Encoding::windows1250;
    if (!ChooseEncoding(options.encoding, file, environment, encoding)) return exitInput;
    map::OpenOptions open;
    open.fileName = file;
    open.symbols = false;
    map::Importer importer;
    map::Reading reading(importer, encoding);
    map::ParcelBuilder builder;
    const auto take = [&](map::ElementKind kind) {
        reading.Take(kind);
        map::AddToParcels(builder, options.layers, kind, reading.Line(), reading.Text());
    };
    const ReadOutcome outcome = ReadElements(importer, open, environment, take, "nothing was listed").outcome;
    if (outcome != ReadOutcome::complete && outcome != ReadOutcome::incomplete) return exitInput;
    const std::string name = client::SystemTextToUtf8(client::ShownName(file.c_str()));
    const map::Parcels made = [&] {
        const StopWatch watch([&] {
            environment.Error(name + ": stopped on request; nothing was listed");
            std::_Exit(exitInput);
        });
        return builder.Build();
    }();
    WarnOfFindings(made, name, environment);
    const ParcelList list(made.parcels);
    if (options.csv) {
        list.WriteCsv(environment.output);
    } else if (options.json) {
        list.WriteJson(environment.output);
    } else {
        list.WriteTable(environment.output);
    }
    return outcome == ReadOutcome::complete ? exitDone : exitInput;
}

}  // namespace

void AddParcelsCommand(Program& program) {
    const auto options = std::make_shared<ParcelOptions>();
    const CommandText text = {
        "parcels",
        "List parcels with their numbers, areas and neighbours",
        R"(Builds parcels from the boundary lines of a map, gives them the parcel numbers that lie inside, and lists number, area in square metres and the numbers of the parcels on the other side of the boundaries. A parcel without a number is shown as "?". Nothing is closed by guess: gaps in boundaries are warnings.)",
        {{"vkm parcels map.vkm", "a list to read"},
         {"vkm parcels map.vkm --csv > parcels.csv", "for a spreadsheet"},
         {"vkm parcels map.vkm --json | jq '.[] | select(.number == \"114/2\") | .neighbours'",
          "the neighbours of a parcel"}}};
    CLI::App& command =
        program.Add(text, [options](Environment& environment) { return RunParcels(*options, environment); });
    AddFileArgument(command, options->file);
    command.add_flag("--csv", options->csv, "Comma-separated values; neighbours are separated by semicolons");
    command.add_flag("--json", options->json, "A JSON array with one object a parcel");
    command.add_option("--boundary-layer", options->layers.boundaries, "Layer of the boundary lines")
        ->type_name("N")
        ->capture_default_str();
    command.add_option("--number-layer", options->layers.numbers, "Layer of the parcel numbers")
        ->type_name("N")
        ->capture_default_str();
    AddEncodingOption(program, command, options->encoding);
}

}  // namespace vemrado::tools
