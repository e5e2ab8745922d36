#include "Kestrio/Base/Initial.h"
#include "Kestrio/Pages/CategoryMenu.h"
#include "Kestrio/Pages/CreditLine.h"
#include "Kestrio/Pages/ExpandableList.h"
#include "Kestrio/Pages/Videos.h"
#include "Tests/Pages/PagesBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(ItemFilter, looksIntoTitleAndSecondLineWithoutRegardToCase) {
    struct Row {
        const char* typed;
        const char* title;
        std::optional<std::string> subtitle;
        bool keeps;
    };
    const Row rows[] = {
        {"", "anything", std::nullopt, true},
        {"  \t ", "anything", std::nullopt, true},
        {"note", "My Notes", std::nullopt, true},
        {"  NOTE ", "My Notes", std::nullopt, true},
        {"my notes", "My Notes", std::nullopt, true},
        {"other", "My Notes", std::nullopt, false},
        {"example", "My Notes", "EXAMPLE.org", true},
        {"example", "My Notes", "elsewhere.org", false},
        {"über", "ÜBER uns", std::nullopt, true},
        {"uber", "Über uns", std::nullopt, false},
        {"x", "", std::nullopt, false},
    };
    for (const auto& row : rows) {
        auto one = item(row.title, 1, Date());
        one.subtitle = row.subtitle;
        EXPECT_EQ(ItemFilter(row.typed).keeps(one), row.keeps) << row.typed << " in " << row.title;
    }
    EXPECT_TRUE(ItemFilter().keeps(item("x", 1, Date())));
    EXPECT_STREQ(ItemFilter::prompt, "Filter");
    EXPECT_STREQ(ItemFilter::symbol, "magnifyingglass");
    EXPECT_STREQ(ItemFilter::clearSymbol, "xmark.circle.fill");
}

TEST(ItemFilter, comparesLettersTheWayOfTheLanguage) {
    struct Row {
        const char* locale;
        const char* typed;
        const char* title;
        bool finds;
    };
    const Row rows[] = {
        {"en_GB", "istanbul", "İstanbul", false},
        {"tr_TR", "istanbul", "İSTANBUL", true},
        {"tr-TR", "istanbul", "I\u0307STANBUL", true}, // with the dot as a mark of its own
        {"tr", "İSTANBUL", "istanbul", true},
        {"az_AZ", "istanbul", "İstanbul", true},
        {"tr_TR", "ısparta", "ISPARTA", true},
        {"tr_TR.UTF-8", "ISPARTA", "ısparta", true},
        {"en_GB", "ısparta", "ISPARTA", false},
        {"tr_TR", "instagram", "INSTAGRAM", true}, // titles in other languages are found all the same
        {"tr_TR", "ağaç", "AĞAÇ", true},
        {"tr_TR", "x", "İ", false},
        {"tron", "istanbul", "İstanbul", false},
        {"de_DE", "straße", "STRASSE", true},
        {"de_DE", "STRASSE", "Straße", true},
        {"en_GB", "e\u0301t", "\u00C9T\u00C9", true}, // accents however they are encoded
        {"en_GB", "e", "e\u0301", false},             // an accent makes another letter
        {"el_GR", "ΟΔΟΣ", "οδος", true},
        {"el_GR", "οδοσ", "ΟΔΟΣ", true},
        {"ru_RU", "яндекс", "ЯНДЕКС", true},
        {"he_IL", "שלום", "היי, שלום!", true},
        {"ja_JP", "東京", "東京タワー", true},
        {"en_GB", "👩‍💻", "Standup 👩‍💻 notes", true},
        {"", "note", "NOTES", true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ItemFilter(row.typed, row.locale).finds(row.title), row.finds)
            << row.typed << " in " << row.title << " for " << row.locale;
}

TEST(ExpandableList, showsAHundredMoreAtATime) {
    ExpandableList list(20);
    EXPECT_EQ(list.shown(15), 15u);
    EXPECT_EQ(list.moreTitle(15), std::nullopt);
    EXPECT_EQ(list.moreTitle(20), std::nullopt);
    EXPECT_EQ(list.moreTitle(21), "Show 1 more");
    EXPECT_EQ(list.moreTitle(119), "Show 99 more");
    EXPECT_EQ(list.moreTitle(120), "Show 100 more");
    EXPECT_EQ(list.moreTitle(1'000'000), "Show 100 more");
    list.showMore(300);
    EXPECT_EQ(list.shown(300), 120u);
    EXPECT_EQ(list.moreTitle(300), "Show 100 more");
    list.showMore(300);
    EXPECT_EQ(list.moreTitle(300), "Show 80 more");
    list.showMore(300);
    EXPECT_EQ(list.shown(300), 300u);
    EXPECT_EQ(list.moreTitle(300), std::nullopt);
    EXPECT_EQ(list.moreTitle(0), std::nullopt);
}

TEST(ExpandableList, growsFromWhatWasShown) {
    ExpandableList list(20);
    list.showMore(5); // a list that was shorter then
    EXPECT_EQ(list.shown(300), 105u);
}

TEST(SiteIcon, isTheFirstLetterOrDigitInUpperCase) {
    struct Row {
        const char* domain;
        const char* letter;
    };
    const Row rows[] = {{"example.org", "E"}, {"-3com.net", "3"}, {"...", "?"},         {"", "?"},
                        {"éclair.fr", "É"},   {"яндекс.рф", "Я"}, {"_münchen.de", "M"}, {"e\u0301t.fr", "E\u0301"},
                        {"xn--p1ai", "X"},    {"例え.jp", "例"},  {"💩.la", "L"},        {"😀", "?"},
                        {"ß.de", "SS"},       {"٣.example", "٣"}, {"localhost", "L"},   {"127.0.0.1", "1"},
                        {"[::1]", "1"},       {"   ", "?"}};
    for (const auto& row : rows) {
        const auto icon = siteIcon(row.domain);
        ASSERT_TRUE(std::holds_alternative<SiteLetter>(icon)) << row.domain;
        EXPECT_EQ(std::get<SiteLetter>(icon).letter, row.letter) << row.domain;
    }
}

TEST(SiteIcon, keepsItsColourFromRunToRun) {
    EXPECT_EQ(stableHash(""), 5381u);
    EXPECT_EQ(stableHash("a"), 5381u * 33 + 97);
    EXPECT_EQ(stableHash("é"), 5381u * 33 + 0xE9); // by scalars, not by bytes
    std::uint32_t hash = 5381;
    for (const char c : std::string("a-long-name-that-overflows.example.org"))
        hash = hash * 33 + static_cast<std::uint32_t>(c);
    EXPECT_EQ(stableHash("a-long-name-that-overflows.example.org"), hash);
    const auto color = std::get<SiteLetter>(siteIcon("a")).color;
    EXPECT_DOUBLE_EQ(color.hue, (5381 * 33 + 97) % 360 / 360.0);
    EXPECT_EQ(stableHash("💩"), 5381u * 33 + 0x1F4A9) << "one scalar, whatever it takes to encode it";
    EXPECT_NE(stableHash("e\u0301"), stableHash("\u00E9"));
    EXPECT_DOUBLE_EQ(std::get<SiteLetter>(siteIcon("")).color.hue, 5381 % 360 / 360.0);
    EXPECT_DOUBLE_EQ(color.saturation, 0.55);
    EXPECT_DOUBLE_EQ(color.brightness, 0.78);
}

TEST(SiteIcon, theVideoSiteHasItsOwn) {
    EXPECT_TRUE(std::holds_alternative<VideoSiteBadge>(siteIcon("youtube.com")));
    EXPECT_TRUE(std::holds_alternative<VideoSiteBadge>(siteIcon("youtu.be")));
    EXPECT_TRUE(std::holds_alternative<SiteLetter>(siteIcon("notyoutube.com")));
    EXPECT_STREQ(VideoSiteBadge::symbol, "play.fill");
}

TEST(VideoThumbnail, isAskedForOnlyWhereWanted) {
    EXPECT_EQ(videoThumbnail("abc-_1", Thumbnails::on).url, "https://i.ytimg.com/vi/abc-_1/mqdefault.jpg");
    EXPECT_EQ(videoThumbnail("abc", Thumbnails::off).url, std::nullopt);
    EXPECT_EQ(videoThumbnail("../x?y", Thumbnails::on).url, "https://i.ytimg.com/vi/%2E%2E%2Fx%3Fy/mqdefault.jpg");
    EXPECT_DOUBLE_EQ(VideoThumbnail::height(160), 90);
    EXPECT_STREQ(VideoThumbnail::placeholderSymbol, "play.fill");
}

TEST(AlongsideBadge, saysOfWhichKindASessionWas) {
    struct Row {
        SessionKind kind;
        AlongsideBadge badge;
    };
    const Row rows[] = {
        {SessionKind::focus, {"Focused", std::nullopt, "cursorarrow.rays"}},
        {SessionKind::watching, {"Watching", "Watching alongside", "play.rectangle.fill"}},
        {SessionKind::listening, {"Listening", "Listening in background", "headphones"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(alongsideBadge(row.kind), row.badge) << row.badge.title;
}

TEST(AlongsideRow, isNamedByItsTitleOrItsApplication) {
    const PagesBench bench;
    AlongsideItem played;
    played.id = "2|org.example.Player|Song";
    played.kind = SessionKind::listening;
    played.bundleID = "org.example.Player";
    played.appName = "Player";
    played.title = "Song";
    played.duration = Seconds(90);
    played.lastSeen = bench.at(9, 5);
    auto row = alongsideRow(played, Seconds(180), bench.viewpoint());
    EXPECT_EQ(row.title, "Song");
    EXPECT_EQ(row.detail, "Player · last 09:05");
    EXPECT_EQ(row.duration, "1m");
    EXPECT_DOUBLE_EQ(row.fraction, 0.5);
    EXPECT_EQ(row.badge.title, "Listening");
    EXPECT_EQ(row.icon, RowIcon(AppIcon{"org.example.Player"}));
    played.title.clear();
    played.domain = "radio.example";
    row = alongsideRow(played, Seconds(0), bench.viewpoint());
    EXPECT_EQ(row.title, "Player");
    EXPECT_EQ(row.detail, "radio.example · last 09:05");
    EXPECT_DOUBLE_EQ(row.fraction, 0);
    EXPECT_TRUE(std::holds_alternative<SiteLetter>(row.icon));
}

TEST(UsageItemRow, joinsItsDetailLine) {
    const PagesBench bench;
    auto one = item("Notes", 65, bench.at(9, 5), 3);
    one.subtitle = "example.org";
    one.url = "https://example.org/notes";
    const auto row = usageItemRow(one, Seconds(130), "visits", Links::shown, bench.viewpoint());
    EXPECT_EQ(row.detail, "3 visits · last 09:05");
    EXPECT_EQ(row.subtitle, "example.org");
    EXPECT_EQ(row.link, "https://example.org/notes");
    EXPECT_EQ(row.duration, "1m");
    EXPECT_DOUBLE_EQ(row.fraction, 0.5);
    EXPECT_EQ(usageItemRow(one, Seconds(1), "times", Links::hidden, bench.viewpoint()).link, std::nullopt);
    one.lastSeen = bench.calendar.date(2026, 11, 18, 7, 45);
    one.url = std::nullopt;
    const auto earlier = usageItemRow(one, Seconds(1), "times", Links::shown, bench.viewpoint());
    EXPECT_EQ(earlier.detail, "3 times · last 18 Nov, 07:45");
    EXPECT_EQ(earlier.link, std::nullopt);
    EXPECT_DOUBLE_EQ(earlier.fraction, 1) << "a bar is never longer than its track";
}

TEST(UsageItemRow, leavesAStrangeTitleAsItIs) {
    const PagesBench bench;
    for (const std::string& title : {std::string(500, 'x'), std::string("two\nlines"), std::string("مرحبا بالعالم"),
                                     std::string("👨‍👩‍👧‍👦 🇩🇪"), std::string("<b>bold</b>")}) {
        const auto row =
            usageItemRow(item(title, 5, bench.at(9)), Seconds(10), "times", Links::shown, bench.viewpoint());
        EXPECT_EQ(row.title, title);
        EXPECT_EQ(row.detail, "1 times · last 09:00");
    }
}

TEST(DetailHeader, saysTheShareOfActiveTime) {
    const auto header = detailHeader(SymbolIcon{"folder.fill"}, "Harbour", Seconds(5400), Seconds(10'800));
    EXPECT_EQ(header.title, "Harbour");
    EXPECT_EQ(header.duration, "1h 30m");
    EXPECT_EQ(header.share, "50% of active time");
    EXPECT_EQ(detailHeader(SymbolIcon{}, "x", Seconds(5), Seconds(0)).share, "0% of active time");
}

TEST(CategoryMenu, listsAllInOrderAndOffersTheWayBack) {
    const auto menu = categoryMenu(ActivityCategory::learning, CategoryOrigin::byDefault);
    EXPECT_EQ(titles(menu.entries), (Texts{"Development", "Work & Docs", "Learning & AI", "Communication",
                                           "Entertainment", "Social Media", "Other"}));
    for (const auto& entry : menu.entries)
        EXPECT_EQ(entry.isCurrent, entry.category == ActivityCategory::learning) << entry.title;
    EXPECT_EQ(menu.current, (CategoryPill{"Learning & AI", SystemColor::purple}));
    const auto overridden = categoryMenu(ActivityCategory::other, CategoryOrigin::overridden);
    ASSERT_EQ(overridden.entries.size(), 8u);
    EXPECT_EQ(overridden.entries.back(), (CategoryMenu::Entry{"Reset to Default", std::nullopt, false}));
    EXPECT_STREQ(CategoryMenu::help, "Change category");
    EXPECT_STREQ(CategoryMenu::symbol, "chevron.down");
    EXPECT_STREQ(CategoryMenu::currentSymbol, "checkmark");
}

TEST(Videos, haveAShortLineInTheOverview) {
    const PagesBench bench;
    struct Row {
        double alongside;
        bool isShort;
        const char* detail;
    };
    const Row rows[] = {
        {0, false, "3× · last 09:05"}, {59, false, "3× · last 09:05"},
        {59.9, true, "Short · 3×"},    {60, false, "1m alongside · last 09:05"},
        {0, true, "Short · 3×"},       {600, true, "10m alongside · last 09:05"},
    };
    for (const auto& row : rows) {
        auto video = watchedVideo("a", 1000, row.alongside, row.isShort);
        video.views = 3;
        video.lastWatched = bench.at(9, 5);
        const auto shown = overviewVideoRow(video, Seconds(2000), Thumbnails::on, bench.viewpoint());
        EXPECT_EQ(shown.subtitle, row.detail) << row.alongside;
        EXPECT_EQ(shown.duration, "16m") << "what was alongside is in the duration already";
        EXPECT_DOUBLE_EQ(shown.fraction, 0.5);
        EXPECT_EQ(shown.icon, RowIcon(videoThumbnail("a", Thumbnails::on)));
    }
}

TEST(Videos, haveAFullLineOnTheirOwnPage) {
    const PagesBench bench;
    struct Row {
        std::int64_t views;
        double alongside;
        const char* detail;
    };
    const Row rows[] = {
        {1, 0, "Opened once · first 19 Nov, 08:00 · last 09:05"},
        {0, 0, "Opened 0 times · first 19 Nov, 08:00 · last 09:05"},
        {4, 0.9, "Opened 4 times · first 19 Nov, 08:00 · last 09:05"},
        {4, 1, "Opened 4 times · 1s alongside · first 19 Nov, 08:00 · last 09:05"},
        {1, 59, "Opened once · 59s alongside · first 19 Nov, 08:00 · last 09:05"},
    };
    for (const auto& row : rows) {
        auto video = watchedVideo("a", 1000, row.alongside);
        video.views = row.views;
        video.firstWatched = bench.calendar.date(2026, 11, 19, 8);
        video.lastWatched = bench.at(9, 5);
        const auto shown = videoRow(video, Thumbnails::off, bench.viewpoint());
        EXPECT_EQ(shown.detail, row.detail);
        EXPECT_EQ(shown.badge, std::nullopt);
        EXPECT_EQ(shown.alongsideHelp,
                  row.alongside >= 1
                      ? std::optional<std::string>("Played on another screen or in the background while you worked")
                      : std::nullopt);
    }
    EXPECT_EQ(videoRow(watchedVideo("a", 1, 0, true), Thumbnails::off, bench.viewpoint()).badge, "Short");
}

TEST(Initial, isAWholeCharacter) {
    EXPECT_EQ(text::initial("  zebra"), "Z");
    EXPECT_EQ(text::initial("\xFF"
                            "a"),
              "A");
    EXPECT_EQ(text::initial("—"), "");
}

TEST(CreditLine, leadsToTheSettingsAndToTheMaker) {
    EXPECT_STREQ(CreditLine::aboutTitle, "About Kestrio");
    EXPECT_STREQ(CreditLine::link, "https://kestrio.haldorvinter.dev");
}

} // namespace
} // namespace kestrio
