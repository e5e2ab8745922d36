#include "Kestrio/Reports/CSVExporter.h"
#include "Kestrio/Reports/CSVImporter.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

namespace kestrio {
namespace {

constexpr Date noon{1'700'049'600}; // 2023-11-15 12:00 UTC

ClassifiedSession session(double length = 60.25) {
    ClassifiedSession made;
    made.start = noon;
    made.end = noon + Seconds(length);
    made.bundleID = "org.example.editor";
    made.appName = "Editor";
    made.title = "Letter";
    made.category = ActivityCategory::work;
    return made;
}

TEST(CSVExporter, escapesWhatNeedsIt) {
    struct Row {
        const char* text;
        const char* field;
    };
    const Row table[] = {
        {"", ""},
        {"plain", "plain"},
        {" blanks ", " blanks "},
        {"semi;colon\ttab 'single'", "semi;colon\ttab 'single'"},
        {"a,b", "\"a,b\""},
        {"\"", "\"\"\"\""},
        {"two \"\" quotes", "\"two \"\"\"\" quotes\""},
        {"a\nb", "\"a\nb\""},
        {"a\rb", "\"a\rb\""},
        {"“curly”, é", "\"“curly”, é\""},
        {"a\xE2\x80\xA8"
         "b",
         "a\xE2\x80\xA8"
         "b"},
    };
    for (const auto& row : table)
        EXPECT_EQ(CSVExporter::escape(row.text), row.field) << row.text;
}

TEST(CSVExporter, writesALinePerSession) {
    const Calendar berlin("en_GB", "Europe/Berlin");
    auto full = session();
    full.start = noon - Seconds(0.5);
    full.end = noon + Seconds(180 * 86'400.0);
    full.bundleID = "org.example,web";
    full.appName = "The \"Web\"";
    full.title = "a,b\nc";
    full.url = "https://example.org/a,b";
    full.domain = "example.org";
    full.project = "kestrel, the";
    full.category = ActivityCategory::entertainment;
    full.kind = SessionKind::watching;
    EXPECT_EQ(
        CSVExporter::csv(std::vector{session(), full}, berlin),
        "start,end,duration_seconds,kind,app,bundle_id,category,project,title,url,domain\n"
        "2023-11-15T13:00:00.000+01:00,2023-11-15T13:01:00.250+01:00,60,focused,Editor,org.example.editor,"
        "Work & Docs,,Letter,,\n"
        "2023-11-15T12:59:59.500+01:00,2024-05-13T14:00:00.000+02:00,15552001,watching,\"The \"\"Web\"\"\","
        "\"org.example,web\",Entertainment,\"kestrel, the\",\"a,b\nc\",\"https://example.org/a,b\",example.org\n");
    EXPECT_EQ(CSVExporter::csv({}, berlin), CSVExporter::header);
}

TEST(CSVExporter, roundsTheLengthWithHalvesAwayFromZero) {
    const Calendar utc("en_GB", "UTC");
    struct Row {
        double length;
        const char* text;
    };
    for (const auto& [length, text] : {Row{0.5, ",1,"}, {0.49, ",0,"}, {1.5, ",2,"}, {2.5, ",3,"}, {-0.5, ",-1,"}})
        EXPECT_NE(CSVExporter::line(session(length), utc).find(std::string("Z") + text), std::string::npos) << length;
}

TEST(CSVExporter, namesTheKinds) {
    const Calendar utc("en_GB", "UTC");
    struct Row {
        SessionKind kind;
        const char* name;
    };
    for (const auto& [kind, name] : {Row{SessionKind::focus, ",focused,"},
                                     {SessionKind::watching, ",watching,"},
                                     {SessionKind::listening, ",listening,"}}) {
        auto one = session();
        one.kind = kind;
        EXPECT_NE(CSVExporter::line(one, utc).find(name), std::string::npos) << name;
    }
}

TEST(CSVExporter, writesDigitsThatEveryProgramReads) {
    const Calendar cairo("ar_EG", "Africa/Cairo");
    EXPECT_TRUE(CSVExporter::line(session(), cairo).starts_with("2023-11-15T14:00:00.000+02:00,"));
}

TEST(CSVExporter, writesManySessionsInPieces) {
    const Calendar utc("en_GB", "UTC");
    const std::vector<ClassifiedSession> many(5000, session());
    std::string whole;
    std::size_t pieces = 0;
    CSVExporter::write(many, utc, [&](std::string_view piece) {
        EXPECT_TRUE(piece.ends_with('\n'));
        whole += piece;
        ++pieces;
    });
    EXPECT_EQ(whole, CSVExporter::csv(many, utc));
    EXPECT_GT(pieces, 5u);
}

TEST(CSVExporter, writesWhatTheImporterReadsBack) {
    // Texts of what is special to the format, to Unicode, and to neither.
    const auto text = rc::gen::map(
        rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
            ",", "\"", "\n", "\r", "\r\n", " ", "a", "é", "😀", "\xEF\xBB\xBF", "\xE2\x80\xA8", std::string(1, '\0'))),
        [](const auto& parts) {
            std::string whole;
            for (const auto& part : parts)
                whole += part;
            return whole;
        });
    const Calendar kathmandu("en_GB", "Asia/Kathmandu");
    rc::check([&] {
        auto made = session();
        made.start = Date(static_cast<double>(*rc::gen::inRange<std::int64_t>(0, 4'000'000'000'000)) / 1000);
        made.end = made.start + Seconds(*rc::gen::inRange(1, 43'200));
        made.bundleID = "a" + *text;
        made.appName = "b" + *text;
        made.title = *text;
        if (const auto url = *text; !url.empty()) {
            made.url = url;
            made.domain = "c" + *text;
        }
        if (const auto project = *text; !project.empty())
            made.project = project;
        made.kind = *rc::gen::elementOf(allSessionKinds);
        const auto result = CSVImporter::parse(CSVExporter::csv(std::vector{made, made}, kathmandu));
        const ActivitySession expected{0,          made.start, made.end,    made.bundleID, made.appName,
                                       made.title, made.url,   made.domain, made.project,  made.kind};
        RC_ASSERT(result == (CSVImporter::Result{{expected, expected}, 0}));
    });
}

} // namespace
} // namespace kestrio
