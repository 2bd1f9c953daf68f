#include "map_page.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "archives/archive_files.h"
#include "client/atomic_output.h"
#include "client/foreign_file.h"
#include "client/input_file.h"
#include "client/standard_input.h"
#include "client/system.h"
#include "embedded_file.h"
#include "map/checked_reading.h"
#include "map_source.h"
#include "program.h"
#include "translations.h"

namespace vemrado::tools {
namespace {

namespace fs = std::filesystem;

constexpr uint64_t longestText = 500'000'000;  // letters; browsers hold little more in one element

std::string ParentOf(const std::string& path) {
    const size_t slash = path.find_last_of("/\\");
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

// The page without a map: installed beside the programs, or in the build tree of the preset web.
std::string FindPage() {
    const std::string folder = ParentOf(ParentOf(client::ProgramPath()));
    const std::string installed = folder + "/share/vemrado/vemrado.html";
    for (const std::string& page : {installed, ParentOf(folder) + "/web/vemrado.html"}) {
        if (client::KindOfFile(page) == client::FileKind::regular) return page;
    }
    throw Failure(exitInput, Filled("{}: there is no page for the browser; the package vemrado has it, or a "
                                    "build of the preset web",
                                    {client::SystemTextToUtf8(installed)}));
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(client::NativePath(path), std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file.is_open() || file.bad())
        throw Failure(exitInput, Filled("{}: the file cannot be read", {client::SystemTextToUtf8(path)}));
    return bytes;
}

struct NoFindings : map::FindingSink {
    void Take(const map::Finding&) override {}
};

std::string ShownName(const std::string& map) {
    return client::SystemTextToUtf8(client::ShownName(map.c_str()));
}

// Puts the bytes of the map into the page while they are read. Whether they end as a map does.
bool PackMap(MapSource& source, client::Encoding encoding, EmbeddedFile& packed,
             const std::string& shownName) {
    if (source.MarkSkipped()) packed.Add(client::byteOrderMark);
    const map::ByteSource read = source.Bytes();
    const map::ByteSource packing = [&](char* to, size_t count) {
        const size_t got = read(to, count);
        packed.Add({to, got});
        if (packed.Length() > longestText)
            throw Failure(exitInput,
                          Filled("{}: too large for a page; open it in the page itself", {shownName}));
        return got;
    };
    NoFindings findings;
    map::CheckedReading reading(packing, encoding, findings, nullptr);
    reading.Run();
    std::vector<char> rest(1 << 16);  // behind a character that ends the map
    while (packing(rest.data(), rest.size()) > 0) {
    }
    return reading.Complete();
}

bool EmbedMap(const PageContent& content, const draw::ByteSink& sink, Environment& environment) {
    const std::string shownName = ShownName(content.map);
    const std::string encoding(client::encodingNames[static_cast<size_t>(content.encoding)]);
    try {
        MapSource source(content.map);
        EmbeddedFile packed(sink, "id=\"embedded-map\" data-name=\"" + Escaped(BaseName(shownName)) +
                                      "\" data-encoding=\"" + encoding + "\"");
        const bool complete = PackMap(source, content.encoding, packed, shownName);
        packed.Finish();
        if (complete) return true;
        environment.Error(Filled(
            "{}: incomplete: its closing record &K is missing, so its last element is lost", {shownName}));
        return false;
    } catch (const client::ForeignFile& foreign) {
        throw Failure(exitInput, foreign.what());
    } catch (const client::UnreadableFile& unreadable) {
        const std::string unpacking = archives::TakeLastProblem();
        throw Failure(exitInput, unpacking.empty() ? unreadable.what()
                                                   : shownName + ": " + client::SystemTextToUtf8(unpacking));
    } catch (const Stopped&) {
        throw Failure(exitInput, Filled("{}: stopped on request; no page was made", {shownName}));
    }
}

// Tables and shape files; what else lies in the folder does not concern a map.
bool IsSymbology(const fs::path& file) {
    const std::string ending = client::LowerAscii(file.extension().string());
    return ending == ".tb" || ending == ".car" || ending == ".col" || ending == ".sym" || ending == ".ksh";
}

void EmbedSymbology(const std::string& directory, const draw::ByteSink& sink) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(client::NativePath(directory + "/VKMSym"), error)) {
        if (!entry.is_regular_file() || !IsSymbology(entry.path())) continue;
        const std::u8string path = entry.path().generic_u8string();
        const std::string name(path.begin(), path.end());
        EmbeddedFile packed(sink, "data-name=\"" + Escaped(client::SystemTextToUtf8(BaseName(name))) + "\"");
        packed.Add(ReadFile(name));
        packed.Finish();
    }
}

}  // namespace

std::string BaseName(const std::string& map) {
    return map.substr(map.find_last_of("/\\") + 1);
}

bool WriteMapPage(const PageContent& content, const draw::ByteSink& sink, Environment& environment) {
    const std::string pageFile = FindPage();
    const std::string page = ReadFile(pageFile);
    // The page's own code comes last, so that it finds what stands before it.
    const size_t code = page.rfind("<script>");
    if (code == std::string::npos)
        throw Failure(exitInternal, client::SystemTextToUtf8(pageFile) + ": not the page of this version");
    sink(std::string_view(page).substr(0, code));
    const bool complete = EmbedMap(content, sink, environment);
    if (!content.symbology.empty()) EmbedSymbology(content.symbology, sink);
    sink(std::string_view(page).substr(code));
    return complete;
}

bool WriteMapPage(const PageContent& content, const std::string& pageFile, Environment& environment) {
    try {
        client::AtomicOutput output(pageFile);
        const bool complete = WriteMapPage(
            content, [&](std::string_view bytes) { output.Write(bytes); }, environment);
        output.Commit();
        return complete;
    } catch (const client::OutputError& error) {
        throw Failure(exitInternal, error.what());
    }
}

}  // namespace vemrado::tools
