#include "Kestrio/Reports/SessionImport.h"

#include "Kestrio/Base/TextFile.h"
#include "Kestrio/Reports/CSVImporter.h"

#include <algorithm>
#include <fmt/format.h>
#include <numeric>

namespace kestrio {
namespace {

/// Reading takes about so much of the whole.
constexpr double shareOfReading = 0.2;

/// All sessions of the files, or what was in the way.
class Reading {
public:
    Reading(const std::vector<SessionFile>& files, LongWork work)
        : files_(files),
          work_(std::move(work)),
          bytesInAll_(std::accumulate(files.begin(), files.end(), 0.0, [](double sum, const SessionFile& file) {
              return sum + static_cast<double>(fileSize(file.content));
          })) {}

    /// Absent when all went well.
    std::optional<ImportOutcome> read() {
        for (const auto& file : files_)
            if (const auto obstacle = read(file))
                return obstacle;
        return std::nullopt;
    }

    PackedSessions sessions;
    std::int64_t skipped = 0;

private:
    std::optional<ImportOutcome> read(const SessionFile& file) {
        CSVImporter::Reader reader([this](const ActivitySession& session) { sessions.add(session); });
        const auto takePiece = [&](std::string_view piece) {
            reader.read(piece);
            bytesRead_ += static_cast<double>(piece.size());
            if (bytesInAll_ > 0) // of a pipe nobody knows how much will come
                work_.progress(std::min(bytesRead_ / bytesInAll_, 1.0));
        };
        try {
            if (const auto error = readText(file.content, takePiece, work_.stop);
                error == std::errc::operation_canceled)
                return ImportStopped{};
            else if (error)
                return ImportFailure{unreadableFileText(file.name, error)};
            reader.finish();
        } catch (const CSVImporter::ImportError& error) {
            return ImportFailure{error.what()};
        }
        skipped += reader.skipped();
        return std::nullopt;
    }

    const std::vector<SessionFile>& files_;
    const LongWork work_;
    const double bytesInAll_;
    double bytesRead_ = 0;
};

} // namespace

ImportOutcome importFiles(const std::vector<SessionFile>& files, Database& database, const LongWork& work) {
    Reading reading(files,
                    {.progress = [&](double share) { work.progress(shareOfReading * share); }, .stop = work.stop});
    if (auto obstacle = reading.read())
        return *obstacle;
    const auto outcome = database.importSessions(
        std::move(reading.sessions),
        {.progress = [&](double share) { work.progress(shareOfReading + (1 - shareOfReading) * share); },
         .stop = work.stop});
    if (std::holds_alternative<Database::ImportStopped>(outcome))
        return ImportStopped{};
    if (const auto* failure = std::get_if<Database::ImportFailure>(&outcome))
        return ImportFailure{failure->message};
    return ImportReport{std::get<Database::ImportSummary>(outcome), reading.skipped};
}

std::string unreadableFileText(std::string_view name, std::error_code error) {
    if (error == std::errc::illegal_byte_sequence)
        return fmt::format("The file \"{}\" isn't UTF-8 text.", name);
    return fmt::format("The file \"{}\" couldn't be read: {}.", name, error.message());
}

std::string importText(const ImportOutcome& outcome, const Calendar& calendar) {
    if (std::holds_alternative<ImportStopped>(outcome))
        return "Import stopped.";
    if (const auto* failure = std::get_if<ImportFailure>(&outcome))
        return fmt::format("Import failed: {}", failure->error);
    const auto& [summary, skipped] = std::get<ImportReport>(outcome);
    const auto number = [&](std::int64_t count) { return calendar.decimal(static_cast<double>(count), 0); };
    std::string text = fmt::format("Added {} sessions", number(summary.added));
    if (skipped > 0)
        text += fmt::format(", skipped {} unreadable rows", number(skipped));
    if (summary.extended > 0)
        text += fmt::format(", extended {}", number(summary.extended));
    if (summary.duplicates > 0)
        text += fmt::format(", ignored {} already in your history", number(summary.duplicates));
    return text + ".";
}

/// Lives on the queue, but for what its thread works on.
struct BackgroundImport::Job {
    ImportReceiver receiver;
    bool isRunning = true;
};

Subscription BackgroundImport::start(std::vector<SessionFile> files, ImportReceiver receiver) {
    if (job_ && job_->isRunning) {
        queue_.async(
            [receiver = std::move(receiver)] { receiver.ended(ImportFailure{"Another import is under way."}); });
        return {};
    }
    job_ = std::make_shared<Job>(Job{std::move(receiver)});
    const auto shared = std::make_shared<std::vector<SessionFile>>(std::move(files));
    thread_ = std::jthread([this, weak = std::weak_ptr(job_), shared](const std::stop_token& stop) {
        const auto tell = [&](auto what) {
            queue_.async([weak, what = std::move(what)] {
                if (const auto job = weak.lock())
                    what(*job);
            });
        };
        int toldPercent = 0;
        const auto progress = [&](double share) {
            const int percent = static_cast<int>(share * 100);
            if (std::exchange(toldPercent, percent) != percent)
                tell([share](Job& job) { job.receiver.progress(share); });
        };
        auto outcome = importFiles(*shared, database_, {progress, stop});
        tell([outcome = std::move(outcome)](Job& job) {
            job.isRunning = false;
            const auto heard = std::exchange(job.receiver, {});
            heard.ended(outcome);
        });
    });
    return Subscription([source = thread_.get_stop_source()]() mutable { source.request_stop(); });
}

void BackgroundImport::stop() {
    thread_ = {}; // asks it to stop, and joins
}

} // namespace kestrio
