#include "reading.h"

#include "archives/archive_files.h"
#include "client/input_file.h"
#include "client/standard_input.h"
#include "client/stop_request.h"
#include "client/system.h"
#include "framework/framework.h"
#include "translations.h"

namespace vemrado::tools {

using map::ElementKind;

namespace {

// The elements up to the end of the data.
ReadOutcome ReadOpened(map::Importer& importer, const std::function<void(ElementKind)>& take) {
    for (ElementKind kind = importer.Next(); kind != ElementKind::none; kind = importer.Next()) take(kind);
    if (importer.Complete()) return ReadOutcome::complete;
    return client::StopRequested() ? ReadOutcome::stopped : ReadOutcome::incomplete;
}

}  // namespace

ReadingEnd ReadElements(map::Importer& importer, const map::OpenOptions& options, Environment& environment,
                        const std::function<void(ElementKind)>& take, Message consequence) {
    ReadingEnd result = {ReadOutcome::failed, {}};
    const std::string name = client::SystemTextToUtf8(client::ShownName(options.fileName.c_str()));
    try {
        if (!importer.Open(options)) return {ReadOutcome::notOpened, environment.lastBox};
        if (importer.MarkSkipped()) environment.Warn(client::SkippedMarkMessage(name));
        result.outcome = ReadOpened(importer, take);
    } catch (const client::ForeignFile& foreign) {
        environment.Error(foreign.what());
        return {ReadOutcome::notOpened, foreign.what()};
    } catch (const CFileException& exception) {
        const std::string unpacking = archives::TakeLastProblem();
        const std::string what =
            unpacking.empty() ? exception.what() : exception.FileName() + ": " + unpacking;
        result.problem = client::SystemTextToUtf8(what) + "; " + Translated(consequence);
    }
    importer.Close();
    environment.output.Flush();

    if (result.outcome == ReadOutcome::stopped) {
        result.problem = Filled("{}: stopped on request; {}", {name, Translated(consequence)});
    } else if (result.outcome == ReadOutcome::incomplete) {
        result.problem =
            Filled("{}: incomplete: its closing record &K is missing, so its last element is lost", {name});
    }
    if (!result.problem.empty()) environment.Error(result.problem);
    return result;
}

}  // namespace vemrado::tools
