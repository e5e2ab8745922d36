#include "Programs/CommandLine/SessionFiles.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Base/TextFile.h"
#include "Kestrio/Platform/Linux/SingleInstance.h"
#include "Kestrio/Reports/CSVExporter.h"
#include "Kestrio/Reports/SessionExport.h"
#include "Kestrio/Reports/SessionImport.h"
#include "Kestrio/Shell/ClassificationSettings.h"
#include "Programs/Agent/HostClassification.h"
#include "Programs/CommandLine/Interruption.h"
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

constexpr mode_t ownersAlone = 0600;
constexpr Seconds stopCheckInterval{0.1};

using Write = std::function<void(std::string_view)>;

/// Opens what is named and is no ordinary file, as a device or a pipe: it is written to and not replaced.
std::optional<Descriptor> unreplaceable(const fs::path& file) {
    std::error_code ignored;
    const auto status = fs::status(file, ignored);
    if (!fs::exists(status) || fs::is_regular_file(status) || fs::is_directory(status))
        return std::nullopt;
    return Descriptor(open(file.c_str(), O_WRONLY | O_CLOEXEC));
}

std::error_code writeThrough(const Descriptor& file, const std::function<void(const Write&)>& content) {
    if (!file)
        return {errno, std::generic_category()};
    std::error_code error;
    content([&](std::string_view text) {
        if (!error)
            error = writeAll(file, text);
    });
    return error;
}

/// Puts the content into the file, whole or not at all where that can be. A link keeps pointing to it.
std::error_code writeFile(const fs::path& path, const std::function<void(const Write&)>& content,
                          const std::stop_token& stop) {
    if (const auto file = unreplaceable(path))
        return writeThrough(*file, content);
    std::error_code isNew;
    const auto target = fs::canonical(path, isNew);
    ReplacementFile file(isNew ? fs::absolute(path) : target, ownersAlone);
    content([&](std::string_view text) { file.write(text); });
    return stop.stop_requested() ? std::make_error_code(std::errc::operation_canceled) : file.commit();
}

Classification currentClassification(const Locations& places, const Clock& clock) {
    const auto settings = openSettings(places);
    ClassificationSettings decisions(*settings, hostHint(processEnvironment, clock));
    return {decisions.categorizer().snapshot(), decisions.projectRules().rules()};
}

/// A share that is done, on one line of the terminal that is overwritten; nothing where there is no terminal.
class ProgressLine {
public:
    explicit ProgressLine(std::string what) : what_(std::move(what)) {}
    ~ProgressLine() {
        if (isShown_)
            std::fputs("\r\033[K", stderr);
    }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void show(double share) {
        if (isatty(STDERR_FILENO) != 1)
            return;
        isShown_ = true;
        const auto line = fmt::format("\r{} {}%", what_, static_cast<int>(share * 100));
        std::fputs(line.c_str(), stderr);
    }

private:
    const std::string what_;
    bool isShown_ = false;
};

SessionFile opened(const std::string& name) {
    if (name == "-")
        return {"standard input", Descriptor(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0))};
    return {fs::path(name).filename().string(), Descriptor(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))};
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
        const auto content = [&](const Write& write) { CSVExporter::write(sessions, calendar, write); };
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
