#include "Fuzz/Fuzz.h"
#include "Kestrio/Reports/CSVExporter.h"
#include "Kestrio/Reports/CSVImporter.h"

namespace {

using namespace kestrio;

/// Absent for a text that is no export.
std::optional<CSVImporter::Result> parsed(std::string_view text) {
    try {
        return CSVImporter::parse(text);
    } catch (const CSVImporter::ImportError&) {
        return std::nullopt;
    }
}

std::optional<CSVImporter::Result> parsedInPieces(std::string_view text, std::size_t pieceSize) {
    const auto isInsideCharacter = [&](std::size_t at) {
        return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
    };
    CSVImporter::Result result;
    CSVImporter::Reader reader([&](ActivitySession session) { result.sessions.push_back(std::move(session)); });
    try {
        for (std::size_t at = 0; at < text.size();) {
            auto end = std::min(at + pieceSize, text.size());
            while (isInsideCharacter(end))
                ++end;
            reader.read(text.substr(at, end - at));
            at = end;
        }
        reader.finish();
    } catch (const CSVImporter::ImportError&) {
        return std::nullopt;
    }
    result.skipped = reader.skipped();
    return result;
}

/// Some zones' clocks show moments at both ends of time that have no date of four digits.
bool hasDates(const ActivitySession& session) {
    return session.start > Date(-62e9) && session.end < Date(253e9);
}

} // namespace

/// Whatever the text, reading it in pieces finds what reading it whole does, and what was found survives the way out
/// and in again.
void kestrio::fuzz(std::string_view input) {
    const auto result = parsed(input);
    for (const std::size_t pieceSize : {1u, 7u})
        require(parsedInPieces(input, pieceSize) == result);
    if (!result)
        return;
    std::vector<ClassifiedSession> exported;
    std::vector<ActivitySession> expected;
    for (const auto& one : result->sessions) {
        require(one.end > one.start && one.end - one.start <= CSVImporter::longestSession && !one.bundleID.empty());
        if (!hasDates(one))
            continue;
        expected.push_back(one);
        exported.push_back({0, one.start, one.end, one.bundleID, one.appName, one.title, one.url, one.domain,
                            one.project, ActivityCategory::other, one.kind});
    }
    static const Calendar calendar("en_GB", "Europe/Berlin");
    require(parsed(CSVExporter::csv(exported, calendar)) == CSVImporter::Result{expected, 0});
}
