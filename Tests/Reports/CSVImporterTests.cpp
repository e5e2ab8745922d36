#include "Kestrio/Reports/CSVImporter.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

constexpr Date noon{1'700'049'600}; // 2023-11-15 12:00 UTC
constexpr auto header = "start,end,duration_seconds,kind,app,bundle_id,category,project,title,url,domain\n";

CSVImporter::Result parsed(const std::string& rows) {
    return CSVImporter::parse(header + rows);
}

/// What reading says when it fails.
std::string problem(const std::string& text) {
    try {
        CSVImporter::parse(text);
        return "none";
    } catch (const CSVImporter::ImportError& error) {
        return error.what();
    }
}

const ActivitySession letter{0,  noon, noon + Seconds(60.25), "org.example.editor", "Editor", "Letter", {},
                             {}, {},   SessionKind::focus};

TEST(CSVImporter, readsWhatTheExportWrites) {
    const auto result = parsed(
        "2023-11-15T13:00:00.000+01:00,2023-11-15T13:01:00.250+01:00,60,focused,Editor,org.example.editor,Work & "
        "Docs,,Letter,,\n"
        "2023-11-15T12:00:00.000Z,2023-11-15T12:00:10.000Z,10,watching,\"Web, the\",org.example.web,Entertainment,"
        "kestrel,\"A \"\"film\"\"\nof two\"\"\"\" lines\",https://www.example.org/a,example.com\n");
    ASSERT_EQ(result.sessions.size(), 2u);
    EXPECT_EQ(result.skipped, 0);
    EXPECT_EQ(result.sessions[0], letter);
    EXPECT_EQ(result.sessions[1], (ActivitySession{0, noon, noon + Seconds(10), "org.example.web", "Web, the",
                                                   "A \"film\"\nof two\"\" lines", "https://www.example.org/a",
                                                   "example.com", "kestrel", SessionKind::watching}));
}

TEST(CSVImporter, ofNoTextHasNothing) {
    for (const char* text : {"", "\xEF\xBB\xBF", header})
        EXPECT_EQ(CSVImporter::parse(text), CSVImporter::Result{}) << text;
}

TEST(CSVImporter, takesColumnsInAnyOrderAndCase) {
    const std::string row = "org.example.editor,2023-11-15T12:01:00.250Z,extra,2023-11-15T12:00:00Z,Letter,Editor\n";
    for (const std::string names : {"bundle_id,end,note,start,title,app", "BUNDLE_ID,End,NOTE,START,Title,APP",
                                    " bundle_id ,\tend,,  start\t,title ,\xE3\x80\x80"
                                    "app",
                                    "\xEF\xBB\xBF"
                                    "bundle_id,end,start,start,title,app"})
        for (const std::string lineEnd : {"\n", "\r\n", "\r"})
            EXPECT_EQ(CSVImporter::parse(names + lineEnd + row).sessions, std::vector{letter}) << names;
}

TEST(CSVImporter, ofAByteOrderMarkReadsTheFirstColumnAsStart) {
    const std::string row =
        "2023-11-15T12:00:00Z,2023-11-15T12:01:00.250Z,0,focused,Editor,org.example.editor,,,Letter";
    EXPECT_EQ(CSVImporter::parse(std::string("\xEF\xBB\xBF") + header + row).sessions, std::vector{letter});
}

TEST(CSVImporter, ofANameThatComesTwiceTakesTheLaterColumn) {
    const auto result = CSVImporter::parse("start,end,bundle_id,title,title\n"
                                           "2023-11-15T12:00:00Z,2023-11-15T12:01:00Z,a,first,second\n");
    EXPECT_EQ(result.sessions.at(0).title, "second");
}

TEST(CSVImporter, saysWhichColumnsAreMissing) {
    struct Row {
        const char* header;
        const char* names;
    };
    const Row table[] = {
        {"start,end,title", "bundle_id"},
        {"title", "start, end, bundle_id"},
        {"bundle_id,end", "start"},
        {"bundle_id,start", "end"},
        {"\nstart,end,bundle_id", "start, end, bundle_id"}, // only the first line counts
        {"start;end;bundle_id", "start, end, bundle_id"},
        {"start_,end,bundle_id", "start"},
        {"{\"start\":1}", "start, end, bundle_id"},
    };
    for (const auto& row : table)
        EXPECT_EQ(problem(row.header),
                  fmt::format("This doesn't look like a Kestrio export (missing column: {}).", row.names));
    try {
        CSVImporter::parse("end");
    } catch (const CSVImporter::ImportError& error) {
        EXPECT_EQ(error.missing(), (std::vector<std::string>{"start", "bundle_id"}));
    }
}

TEST(CSVImporter, countsRowsThatAreNoSession) {
    struct Row {
        const char* name;
        std::string row;
        bool isSession;
        int skipped;
    };
    const std::string start = "2023-11-15T12:00:00Z,";
    const std::string rest = ",,,,a\n";
    const Row table[] = {
        {"good", start + "2023-11-15T12:01:00Z" + rest, true, 0},
        {"blanks around the dates", " " + start.substr(0, 20) + "\t, 2023-11-15T12:01:00Z " + rest, true, 0},
        {"a blank line", "\n", false, 0},
        {"a quoted blank line", "\"\"\n", false, 0},
        {"a line of one space", " \n", false, 1},
        {"a line of one comma", ",\n", false, 1},
        {"one field that is no date", "x\n", false, 1},
        {"no start", "," + start.substr(0, 20) + rest, false, 1},
        {"a damaged start", "2023-11-15," + start.substr(0, 20) + rest, false, 1},
        {"a damaged end", start + "yesterday" + rest, false, 1},
        {"no end", start + rest, false, 1},
        {"an end at the start", start + "2023-11-15T12:00:00.000Z" + rest, false, 1},
        {"an end a millisecond later", start + "2023-11-15T12:00:00.001Z" + rest, true, 0},
        {"an end before the start", start + "2023-11-15T11:59:59Z" + rest, false, 1},
        {"12 hours", start + "2023-11-16T00:00:00.000Z" + rest, true, 0},
        {"a millisecond more", start + "2023-11-16T00:00:00.001Z" + rest, false, 1},
        {"a second more", start + "2023-11-16T00:00:01Z" + rest, false, 1},
        {"no application", start + "2023-11-15T12:01:00Z,,,x,\n", false, 1},
        {"too few fields", start + "2023-11-15T12:01:00Z\n", false, 1},
        {"more fields than columns", start + "2023-11-15T12:01:00Z,,,,a,,,,,,,,,\n", true, 0},
        {"an application of one blank", start + "2023-11-15T12:01:00Z,,,, \n", true, 0},
        {"cut off in the middle of a quote", start + "2023-11-15T12:01:00Z,,,,a,,,\"Let", true, 0},
        {"a quote that is never closed", start + "2023-11-15T12:01:00Z,,,,\"", false, 1},
    };
    for (const auto& row : table) {
        const auto result = parsed(row.row);
        EXPECT_EQ(result.sessions.size(), row.isSession ? 1u : 0u) << row.name;
        EXPECT_EQ(result.skipped, row.skipped) << row.name;
    }
}

TEST(CSVImporter, goesOnAfterADamagedRow) {
    const std::string good = "2023-11-15T12:00:00Z,2023-11-15T12:01:00Z,,,,a\n";
    const auto result = parsed(good + "damaged\n" + good + "\n,,\n" + good);
    EXPECT_EQ(result.sessions.size(), 3u);
    EXPECT_EQ(result.skipped, 2);
}

TEST(CSVImporter, fillsInWhatIsEmpty) {
    const std::string dates = "2023-11-15T12:00:00Z,2023-11-15T12:01:00Z,,";
    const auto one = [&](const std::string& rest) { return parsed(dates + rest).sessions.at(0); };
    EXPECT_EQ(one(",,org.example.editor").appName, "org.example.editor");
    EXPECT_EQ(one(",,a,,,,https://www.example.org/x,").domain, "example.org");
    EXPECT_EQ(one(",,a,,,,https://www.example.org/x,other").domain, "other");
    EXPECT_EQ(one(",,a,,,,about:blank,").domain, std::nullopt);
    EXPECT_EQ(one(",,a,,,,about:blank,").url, "about:blank");
    EXPECT_EQ(one(",,a").url, std::nullopt);
    EXPECT_EQ(one(",,a").project, std::nullopt);
    EXPECT_EQ(one(",,a").title, "");
    EXPECT_EQ(one(",,a,,kestrel").project, "kestrel");
    EXPECT_EQ(one(",,a,,, Letter ").title, " Letter "); // as it stands
}

TEST(CSVImporter, readsTheKind) {
    struct Row {
        const char* text;
        SessionKind kind;
    };
    const Row table[] = {
        {"focused", SessionKind::focus},
        {"", SessionKind::focus},
        {"0", SessionKind::focus},
        {"watching", SessionKind::watching},
        {"Watching", SessionKind::watching},
        {"1", SessionKind::watching},
        {"LISTENING", SessionKind::listening},
        {"2", SessionKind::listening},
        {"3", SessionKind::focus},
        {"anything", SessionKind::focus},
        {" watching", SessionKind::focus},
    };
    for (const auto& row : table)
        EXPECT_EQ(
            parsed(fmt::format("2023-11-15T12:00:00Z,2023-11-15T12:01:00Z,,{},,a\n", row.text)).sessions.at(0).kind,
            row.kind)
            << row.text;
}

TEST(CSVImporter, readsAFileOfAMillionColumns) {
    std::string names;
    std::string fields;
    for (int i = 0; i < 1'000'000; ++i) {
        names += "x,";
        fields += ",";
    }
    const auto result =
        CSVImporter::parse(names + "start,end,bundle_id\n" + fields + "2023-11-15T12:00:00Z,2023-11-15T12:01:00Z,a\n");
    EXPECT_EQ(result.sessions.size(), 1u);
    EXPECT_EQ(result.skipped, 0);
    EXPECT_EQ(problem(names), "This doesn't look like a Kestrio export (missing column: start, end, bundle_id).");
}

TEST(CSVImporter, skipsARowWithATextOfAbsurdLength) {
    const std::string dates = "2023-11-15T12:00:00Z,2023-11-15T12:01:00Z,,,,a,,,";
    const auto result = parsed(dates + std::string(CSVScanner::longestField + 1, 'x') + "\n" + dates + "Letter\n");
    EXPECT_EQ(result.skipped, 1);
    ASSERT_EQ(result.sessions.size(), 1u);
    EXPECT_EQ(result.sessions[0].title, "Letter");
}

TEST(CSVImporter, makesAnythingOfRubbishButHarm) {
    std::string rubbish;
    unsigned state = 1;
    for (int i = 0; i < 200'000; ++i)
        rubbish += static_cast<char>((state = state * 1'103'515'245 + 12'345) >> 16);
    EXPECT_EQ(problem(rubbish), "This doesn't look like a Kestrio export (missing column: start, end, bundle_id).");
    const auto result = parsed(rubbish);
    EXPECT_TRUE(result.sessions.empty());
    EXPECT_GT(result.skipped, 0);
}

} // namespace
} // namespace kestrio
