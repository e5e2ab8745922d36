#include "Programs/CommandLine/SessionFiles.h"

#include "Kestrio/Base/Files.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/Linux/SingleInstance.h"
#include "Kestrio/Reports/CSVExporter.h"
#include "Kestrio/Reports/SessionExport.h"
#include "Kestrio/Reports/SessionImport.h"
#include "Programs/CommandLine/CurrentClassification.h"
#include "Programs/CommandLine/Interruption.h"
#include "Programs/CommandLine/OutputFile.h"
#include "Programs/CommandLine/ProgressLine.h"
#include "Programs/CommandLine/StoredSessions.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;
using namespace exitStatus;

constexpr Seconds stopCheckInterval{0.1};

SessionFile opened(const std::string& name) {
    if (name == "-")
        return {"standard input", Descriptor(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0))};
    return {fs::path(name).filename().string(), openForReading(name)};
}

ImportOutcome importThroughAgent(BackgroundClient& agent, std::vector<SessionFile> files, const LongWork& work) {
    std::optional<ImportOutcome> outcome;
    auto import =
        agent.importFiles(std::move(files), {work.progress, [&](const ImportOutcome& ended) { outcome = ended; }});
    while (!outcome) {
        if (!agent.serve(stopCheckInterval))
            return ImportFailure{"Kestrio does not answer"};
        if (work.stop.stop_requested())
            import.cancel(); // its end is still told
    }
    return *outcome;
}

int tell(const ImportOutcome& outcome) {
    const auto text = importText(outcome, Calendar::current());
    if (std::holds_alternative<ImportReport>(outcome)) {
        print(text + "\n");
        return done;
    }
    complain(text);
    return failed;
}

/// Into the database itself, which nobody else may be writing.
int importAlone(const Locations& places, const std::vector<SessionFile>& files, const LongWork& work) {
    const auto folder = Database::directory(places.data);
    const auto instance = SingleInstance::acquire(folder);
    if (const auto* failure = std::get_if<SingleInstance::Failed>(&instance)) {
        complain(failure->reason);
        return failed;
    }
    if (std::holds_alternative<SingleInstance::Taken>(instance)) {
        complain("Kestrio is running, but does not answer here. End it, or import where it runs.");
        return failed;
    }
    return withDatabaseErrors(places, [&] {
        WorkerQueue queue("Kestrio.database");
        Database database(folder / Database::fileName, queue);
        return tell(importFiles(files, database, work));
    });
}

} // namespace

int exportSessions(const ExportOptions& options) {
    const auto range = exportRange(options.range);
    if (!range) {
        complain("--range \"" + text::fittedToColumns(options.range, 60) + "\" is none of today, week, month and all");
        return wrongUsage;
    }
    std::optional<Interruption> interruption;
    if (options.output != "-")
        interruption.emplace(); // so that nothing half written is left behind
    const auto places = placesOrExit();
    const auto agent = runningAgent(places);
    const auto status = agent ? agent->status() : std::nullopt;
    warnOfUnsaved(status);
    return withStored(places, [&](Database* database) {
        const SystemClock clock;
        const auto calendar = Calendar::current();
        const auto span = interval(*range, clock.now(), database ? database->earliestStart() : std::nullopt, calendar);
        const auto sessions =
            exportedSessions(sessionsOf(database, status, span), span, calendar, currentClassification(places, clock));
        const auto content = [&](const FileWriter& write) { CSVExporter::write(sessions, calendar, write); };
        if (options.output == "-") {
            content([](std::string_view text) { print(std::string(text)); });
            return done;
        }
        const auto error = writeFile(options.output, content, interruption->token());
        if (interruption->token().stop_requested())
            return interrupted;
        if (error) {
            complain(exportFailedText(error.message()));
            return failed;
        }
        print(exportedText(sessions.size(), fs::path(options.output).filename().string(), calendar) + "\n");
        return done;
    });
}

int importSessions(const std::vector<std::string>& names) {
    const Interruption interruption;
    const auto places = placesOrExit();
    std::vector<SessionFile> files;
    for (const auto& name : names) {
        files.push_back(opened(name));
        if (!files.back().content) {
            const std::error_code error(errno, std::generic_category());
            return tell(ImportFailure{unreadableFileText(files.back().name, error)});
        }
    }
    ProgressLine line("Importing…");
    const LongWork work{[&](double share) { line.show(share); }, interruption.token()};
    const auto agent = runningAgent(places);
    const int status =
        agent ? tell(importThroughAgent(*agent, std::move(files), work)) : importAlone(places, files, work);
    return status != done && interruption.token().stop_requested() ? interrupted : status;
}

} // namespace kestrio
