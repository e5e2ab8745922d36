// Reading back the files that the export writes, those of the program's earlier names included. Pure; any thread.
#pragma once

#include "Kestrio/Model/Models.h"
#include "Kestrio/Reports/CSVScanner.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

namespace CSVImporter {

/// The text is no export: its first record lacks columns.
class ImportError : public std::runtime_error {
public:
    static ImportError notAnExport(std::vector<std::string> missing);

    /// The names of the columns, in the order start, end, bundle_id.
    const std::vector<std::string>& missing() const { return missing_; }

private:
    ImportError(const std::string& description, std::vector<std::string> missing)
        : std::runtime_error(description), missing_(std::move(missing)) {}

    std::vector<std::string> missing_;
};

struct Result {
    std::vector<ActivitySession> sessions; // each with the identifier 0, in the order of the text
    std::int64_t skipped = 0;              // records that are no session

    friend bool operator==(const Result&, const Result&) = default;
};

/// Reads the whole text of a file. Throws `ImportError`. A text without any record has no sessions.
Result parse(std::string_view text);

/// A longer session cannot be real.
inline constexpr Seconds longestSession{43'200};

/// The same piece by piece, for files of any size. Single-threaded.
class Reader : private CSVScanner::Receiver {
public:
    using TakeSession = std::function<void(ActivitySession)>;

    explicit Reader(TakeSession takeSession) : takeSession_(std::move(takeSession)) {}

    /// Pieces end between characters. Throws `ImportError` at the end of the first record.
    void read(std::string_view piece) { scanner_.scan(piece); }
    void finish() { scanner_.finish(); }

    /// How many records so far are no session.
    std::int64_t skipped() const { return skipped_; }

private:
    enum class Column { start, end, kind, app, bundleID, project, title, url, domain };
    static constexpr std::size_t columnCount = 9;
    static std::optional<Column> column(std::string_view name);

    void takeField(std::size_t position, std::optional<std::string_view> text) override;
    void endRecord() override;
    void takeColumnName(std::size_t position, std::string_view name);
    void endHeader();
    std::optional<ActivitySession> session() const;
    void clearRecord();

    const std::string& value(Column column) const { return values_[static_cast<std::size_t>(column)]; }
    std::optional<std::string> valueOrAbsent(Column column) const;

    const TakeSession takeSession_;
    CSVScanner scanner_{*this};
    bool isInHeader_ = true;
    std::array<std::optional<std::size_t>, columnCount> positions_; // by column
    std::vector<std::optional<Column>> columns_;                    // by position, up to the last that counts
    std::int64_t skipped_ = 0;

    // The record in progress.
    std::array<std::string, columnCount> values_;
    bool isBlank_ = true;
    bool isTooLong_ = false;
};

} // namespace CSVImporter

} // namespace kestrio
