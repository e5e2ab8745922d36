// Bringing the sessions of exported files into the database: all of them or none.
#pragma once

#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/Descriptor.h"
#include "Kestrio/Base/LongWork.h"

#include <string>
#include <string_view>
#include <thread>
#include <variant>
#include <vector>

namespace kestrio {

/// A file that whoever asks has opened for reading; a pipe will do. The name is for messages.
struct SessionFile {
    std::string name;
    Descriptor content;
};

struct ImportReport {
    Database::ImportSummary summary;
    std::int64_t skipped = 0; // rows that are no session

    friend bool operator==(const ImportReport&, const ImportReport&) = default;
};
/// Somebody stopped it. The database is as it was.
struct ImportStopped {
    friend bool operator==(const ImportStopped&, const ImportStopped&) = default;
};
/// Why it could not be done, in words for the person. The database is as it was.
struct ImportFailure {
    std::string error;

    friend bool operator==(const ImportFailure&, const ImportFailure&) = default;
};
using ImportOutcome = std::variant<ImportReport, ImportStopped, ImportFailure>;

/// Reads all files and then takes in their sessions at once; the first file that cannot be read ends it. Blocks for as
/// long as that takes: seconds for a history of many years.
ImportOutcome importFiles(const std::vector<SessionFile>& files, Database& database, const LongWork& work);

/// Why a file cannot be read, in words for the person.
std::string unreadableFileText(std::string_view name, std::error_code error);

/// "Added 3 sessions, skipped 1 unreadable rows, extended 2, ignored 5 already in your history.", of which all but the
/// first stand there only when there are any; or "Import failed: " and the error; or "Import stopped.".
std::string importText(const ImportOutcome& outcome, const Calendar& calendar);

/// How whoever asked for an import hears of it.
struct ImportReceiver {
    std::function<void(double share)> progress = [](double) {}; // at most a hundred times
    std::function<void(const ImportOutcome&)> ended;            // once
};

/// Imports in the background of a queue: each on a thread of its own, one at a time. Belongs to the queue, on which the
/// receivers are called too.
class BackgroundImport {
public:
    /// Both must outlive this.
    BackgroundImport(Database& database, Queue& queue) : database_(database), queue_(queue) {}
    ~BackgroundImport() { stop(); }
    BackgroundImport(const BackgroundImport&) = delete;
    BackgroundImport& operator=(const BackgroundImport&) = delete;

    /// Does not wait. Dropping the token stops the import; its end is told all the same.
    Subscription start(std::vector<SessionFile> files, ImportReceiver receiver);

    /// Stops what runs and waits until the database is as it was.
    void stop();

private:
    struct Job;

    Database& database_;
    Queue& queue_;
    std::shared_ptr<Job> job_; // the one that runs, or did last
    std::jthread thread_;
};

} // namespace kestrio
