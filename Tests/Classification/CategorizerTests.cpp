#include "Kestrio/Classification/Categorizer.h"

#include <gtest/gtest.h>
#include <set>
#include <thread>

namespace kestrio {
namespace {

using enum ActivityCategory;
using Stored = Categorizer::StoredOverrides;
using Names = std::vector<std::string>;

/// A settings store of two entries, which remembers what was written.
struct Settings {
    std::optional<Stored> apps;
    std::optional<Stored> domains;
    int writes = 0;
    bool refusing = false;

    StoredSetting<Stored> setting(std::optional<Stored> Settings::*entry) {
        return {[this, entry] { return this->*entry; },
                [this, entry](const Stored& value) {
                    ++writes;
                    if (refusing)
                        return false;
                    this->*entry = value;
                    return true;
                }};
    }
    Categorizer categorizer(Categorizer::HostHint hint = {}) {
        return Categorizer(setting(&Settings::apps), setting(&Settings::domains), std::move(hint));
    }
};

Categorizer::Snapshot withoutOverrides() {
    return {};
}

std::size_t countOf(const CategoryTable& table, ActivityCategory category) {
    std::size_t count = 0;
    for (const auto& [name, its] : table)
        count += its == category ? 1 : 0;
    return count;
}

TEST(CategoryTables, haveTheirRowsInEachCategory) {
    const struct {
        ActivityCategory category;
        std::size_t apps;
        std::size_t domains;
    } rows[] = {
        {development, 41, 86},  {work, 31, 47},  {learning, 6, 44}, {communication, 17, 23},
        {entertainment, 8, 34}, {social, 0, 17}, {other, 0, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(countOf(builtInApps(), row.category), row.apps) << rawValue(row.category);
        EXPECT_EQ(countOf(builtInDomains(), row.category), row.domains) << rawValue(row.category);
    }
    EXPECT_EQ(builtInApps().size(), 103u);
    EXPECT_EQ(Categorizer::defaultDomains().size(), 251u);
}

TEST(CategoryTables, aSiteIsAPlainHostInLowerCase) {
    for (const auto& [domain, category] : builtInDomains()) {
        EXPECT_EQ(Categorizer::normalizedDomain(domain), domain);
        EXPECT_FALSE(domain.starts_with("www.")) << domain;
        EXPECT_EQ(domain.find_first_of("/: "), std::string_view::npos) << domain;
    }
}

TEST(CategoryTables, aServicesPartsHaveCategoriesOfTheirOwn) {
    const struct {
        const char* domain;
        ActivityCategory category;
    } rows[] = {
        {"google.com", learning},
        {"news.google.com", learning},
        {"docs.google.com", work},
        {"sheets.google.com", work},
        {"slides.google.com", work},
        {"drive.google.com", work},
        {"calendar.google.com", work},
        {"forms.google.com", work},
        {"keep.google.com", work},
        {"mail.google.com", communication},
        {"meet.google.com", communication},
        {"chat.google.com", communication},
        {"firebase.google.com", development},
        {"cloud.google.com", development},
        {"console.cloud.google.com", development},
        {"translate.google.com", learning},
        {"en.wikipedia.org", learning},
        {"gist.github.com", development},
        {"openai.com", learning},
        {"platform.openai.com", development},
        {"anthropic.com", learning},
        {"console.anthropic.com", development},
        {"claude.ai", learning},
        {"music.youtube.com", entertainment},
        {"dashboard.stripe.com", development},
        {"stripe.com", other},
        {"old.reddit.com", social},
        {"localhost:8080", development},
        {"127.0.0.1:5000", development},
        {"0.0.0.0", development},
        {"example.org", other},
        {"com", other},
        {"githubXcom", other},
    };
    for (const auto& row : rows)
        EXPECT_EQ(withoutOverrides().category("org.example.browser", row.domain), row.category) << row.domain;
}

TEST(Categorizer, looksADomainUpUnderItselfAndItsParents) {
    const struct {
        const char* domain;
        Names names;
    } rows[] = {
        {"github.com", {"github.com"}},
        {"gist.github.com", {"gist.github.com", "github.com"}},
        {"a.b.c.example.org", {"a.b.c.example.org", "b.c.example.org", "c.example.org", "example.org"}},
        {"localhost", {"localhost"}},
        {"localhost:3000", {"localhost:3000", "localhost"}},
        {"127.0.0.1:80", {"127.0.0.1:80", "127.0.0.1", "0.0.1", "0.1"}},
        {"127.0.0.1", {"127.0.0.1", "0.0.1", "0.1"}},
        {"a.example.org:1:2", {"a.example.org:1:2", "a.example.org", "example.org"}},
        {"com", {"com"}},
        {"", {""}},
        {":80", {":80", ""}},
        {"example.org.", {"example.org."}},
        {"a..example.org", {"a..example.org", "example.org"}},
        {".a.example.org.", {".a.example.org.", "example.org"}},
        {"...", {"..."}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Categorizer::hierarchy(row.domain), row.names) << row.domain;
}

TEST(Categorizer, knowsApplicationsByTableThenByPrefix) {
    const struct {
        const char* bundleID;
        std::optional<ActivityCategory> category;
    } rows[] = {
        {"com.microsoft.VSCode", development},  {"notion.id", work},
        {"com.openai.chat", learning},          {"com.tinyspeck.slackmacgap", communication},
        {"com.spotify.client", entertainment},  {"com.jetbrains.", development},
        {"com.jetbrains.goland", development},  {"com.microsoft.VSCodeExploration", development},
        {"com.apple.dt.Anything", development}, {"com.adobe.Photoshop", work},
        {"com.jetbrains", std::nullopt},        {"com.Jetbrains.goland", std::nullopt},
        {"com.microsoft.vscode", std::nullopt}, {"com.adobe", std::nullopt},
        {"org.mozilla.firefox", std::nullopt},  {"", std::nullopt},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Categorizer::defaultCategory(row.bundleID), row.category) << row.bundleID;
        EXPECT_EQ(withoutOverrides().appCategory(row.bundleID), row.category.value_or(other)) << row.bundleID;
    }
}

TEST(Categorizer, theSiteDecidesWhateverTheApplicationIs) {
    EXPECT_EQ(withoutOverrides().category("com.microsoft.VSCode", "netflix.com"), entertainment);
    EXPECT_EQ(withoutOverrides().category("com.microsoft.VSCode", "example.org"), development);
    EXPECT_EQ(withoutOverrides().category("org.mozilla.firefox", "example.org"), other);
}

TEST(Categorizer, withoutADomainOrWithAnEmptyOneTheApplicationDecides) {
    EXPECT_EQ(withoutOverrides().category("com.microsoft.VSCode", std::nullopt), development);
    EXPECT_EQ(withoutOverrides().category("com.microsoft.VSCode", ""), development);
}

TEST(Categorizer, aBuiltInHostBeatsTheChoiceForItsParent) {
    Settings settings;
    auto categorizer = settings.categorizer();
    categorizer.setDomainCategory(social, "google.com");
    EXPECT_EQ(categorizer.snapshot().category("a", "docs.google.com"), work);
    EXPECT_EQ(categorizer.snapshot().category("a", "a.docs.google.com"), work);
    EXPECT_EQ(categorizer.snapshot().category("a", "google.com"), social);
    EXPECT_EQ(categorizer.snapshot().category("a", "news.google.com"), social);
    categorizer.setDomainCategory(entertainment, "docs.google.com");
    EXPECT_EQ(categorizer.snapshot().category("a", "docs.google.com"), entertainment);
    EXPECT_EQ(categorizer.snapshot().category("a", "a.docs.google.com"), entertainment);
}

TEST(Categorizer, aDomainIsKeptInLowerCaseAndWithoutBlanks) {
    Settings settings;
    auto categorizer = settings.categorizer();
    categorizer.setDomainCategory(work, " \tExample.ORG \t");
    EXPECT_EQ(settings.domains, (Stored{{"example.org", "work"}}));
    EXPECT_EQ(categorizer.snapshot().category("a", "example.org"), work);
    EXPECT_EQ(categorizer.snapshot().category("a", "deep.below.example.org"), work);
    categorizer.setDomainCategory(std::nullopt, "EXAMPLE.org");
    EXPECT_EQ(settings.domains, Stored());
}

TEST(Categorizer, aDomainOfBlanksIsNone) {
    Settings settings;
    auto categorizer = settings.categorizer();
    int heard = 0;
    const auto token = categorizer.observe([&] { ++heard; });
    for (const char* blank : {"", " ", " \t "}) {
        categorizer.setDomainCategory(work, blank);
        categorizer.setDomainCategory(std::nullopt, blank);
    }
    EXPECT_EQ(heard, 0);
    EXPECT_EQ(settings.writes, 0);
}

TEST(Categorizer, anApplicationsIdentifierCountsAsItStands) {
    Settings settings;
    auto categorizer = settings.categorizer();
    categorizer.setAppCategory(work, " Org.Example ");
    EXPECT_EQ(settings.apps, (Stored{{" Org.Example ", "work"}}));
    EXPECT_EQ(categorizer.snapshot().appCategory(" Org.Example "), work);
    EXPECT_EQ(categorizer.snapshot().appCategory("Org.Example"), other);
    EXPECT_EQ(categorizer.snapshot().appCategory(" org.example "), other);
}

TEST(Categorizer, theChoiceForAnApplicationBeatsTableAndPrefixButNoSite) {
    Settings settings;
    auto categorizer = settings.categorizer();
    for (const char* bundleID : {"com.spotify.client", "com.jetbrains.goland", "org.mozilla.firefox"}) {
        categorizer.setAppCategory(social, bundleID);
        const auto snapshot = categorizer.snapshot();
        EXPECT_EQ(snapshot.category(bundleID, std::nullopt), social);
        EXPECT_EQ(snapshot.category(bundleID, "example.org"), social);
        EXPECT_EQ(snapshot.category(bundleID, "github.com"), development);
        EXPECT_EQ(snapshot.appCategory(bundleID), social);
    }
}

TEST(Categorizer, takingAChoiceBackRestoresTheBuiltInAnswer) {
    Settings settings;
    auto categorizer = settings.categorizer();
    categorizer.setAppCategory(social, "com.spotify.client");
    categorizer.setAppCategory(std::nullopt, "com.spotify.client");
    categorizer.setDomainCategory(social, "github.com");
    categorizer.setDomainCategory(std::nullopt, "github.com");
    EXPECT_EQ(categorizer.snapshot().appCategory("com.spotify.client"), entertainment);
    EXPECT_EQ(categorizer.snapshot().category("a", "github.com"), development);
    EXPECT_EQ(settings.apps, Stored());
    EXPECT_EQ(settings.domains, Stored());
}

TEST(Categorizer, theHostIsAskedLastOfAll) {
    std::vector<std::string> asked;
    Settings settings;
    settings.apps = Stored{{"org.example.mine", "social"}};
    const auto categorizer = settings.categorizer([&](std::string_view bundleID) -> std::optional<ActivityCategory> {
        asked.emplace_back(bundleID);
        return bundleID == "org.example.player" ? std::optional(entertainment) : std::nullopt;
    });
    const auto snapshot = categorizer.snapshot();
    EXPECT_EQ(snapshot.appCategory("org.example.mine"), social);
    EXPECT_EQ(snapshot.appCategory("com.spotify.client"), entertainment);
    EXPECT_EQ(snapshot.appCategory("com.adobe.Photoshop"), work);
    EXPECT_EQ(snapshot.category("org.example.player", "github.com"), development);
    EXPECT_EQ(asked, Names());
    EXPECT_EQ(snapshot.category("org.example.player", "example.org"), entertainment);
    EXPECT_EQ(snapshot.appCategory("org.example.unknown"), other);
    EXPECT_EQ(asked, (Names{"org.example.player", "org.example.unknown"}));
}

TEST(Categorizer, aStoredValueThatNamesNoCategoryIsDropped) {
    Settings settings;
    settings.apps = Stored{{"a", "work"}, {"b", "Work"}, {"c", ""}, {"d", "fun"}};
    settings.domains = Stored{{"a.org", "social"}, {"b.org", "sociable"}};
    auto categorizer = settings.categorizer();
    EXPECT_EQ(categorizer.snapshot().appOverrides, (Categorizer::Overrides{{"a", work}}));
    EXPECT_EQ(categorizer.snapshot().domainOverrides, (Categorizer::Overrides{{"a.org", social}}));
    EXPECT_EQ(settings.writes, 0);
    categorizer.setAppCategory(other, "e");
    EXPECT_EQ(settings.apps, (Stored{{"a", "work"}, {"e", "other"}}));
    EXPECT_EQ(settings.domains->size(), 2u);
}

TEST(Categorizer, whatIsNotStoredIsEmpty) {
    const auto categorizer = Categorizer({}, {});
    EXPECT_TRUE(categorizer.snapshot().appOverrides.empty());
    EXPECT_TRUE(categorizer.snapshot().domainOverrides.empty());
}

TEST(Categorizer, tellsOfEveryChangeAfterItIsMade) {
    Settings settings;
    auto categorizer = settings.categorizer();
    std::vector<ActivityCategory> heard;
    const auto token = categorizer.observe([&] {
        EXPECT_EQ(settings.writes, static_cast<int>(heard.size()) + 1);
        heard.push_back(categorizer.snapshot().category("a", "example.org"));
    });
    categorizer.setAppCategory(work, "a");
    categorizer.setAppCategory(work, "a");
    categorizer.setDomainCategory(social, "example.org");
    categorizer.setDomainCategory(std::nullopt, "example.org");
    EXPECT_EQ(heard, (std::vector{work, work, social, work}));
}

TEST(Categorizer, whatCannotBeStoredHoldsInThisProcess) {
    Settings settings;
    auto categorizer = settings.categorizer();
    EXPECT_TRUE(categorizer.setAppCategory(work, "a"));
    settings.refusing = true;
    EXPECT_FALSE(categorizer.setAppCategory(work, "b"));
    EXPECT_FALSE(categorizer.setDomainCategory(work, "b.org"));
    EXPECT_EQ(categorizer.snapshot().appCategory("b"), work);
    EXPECT_EQ(settings.apps, (Stored{{"a", "work"}}));
}

TEST(Categorizer, aSnapshotIsOfItsMoment) {
    Settings settings;
    auto categorizer = settings.categorizer();
    const auto before = categorizer.snapshot();
    categorizer.setAppCategory(work, "a");
    EXPECT_EQ(before.appCategory("a"), other);
    EXPECT_EQ(categorizer.snapshot().appCategory("a"), work);
}

TEST(Categorizer, readsAgainWhatSomebodyElseStored) {
    Settings settings;
    auto categorizer = settings.categorizer();
    int heard = 0;
    const auto token = categorizer.observe([&] { ++heard; });
    categorizer.reload();
    EXPECT_EQ(heard, 0);
    settings.domains = Stored{{"example.org", "work"}};
    categorizer.reload();
    EXPECT_EQ(heard, 1);
    EXPECT_EQ(categorizer.snapshot().category("a", "example.org"), work);
    categorizer.reload();
    EXPECT_EQ(heard, 1);
    settings.domains = std::nullopt;
    categorizer.reload();
    EXPECT_EQ(heard, 2);
    EXPECT_EQ(categorizer.snapshot().category("a", "example.org"), other);
}

TEST(Categorizer, aStoreThatTellsAtOnceMayLeadBack) {
    Stored stored;
    std::function<void()> told = [] {};
    Categorizer categorizer({[&] { return stored; },
                             [&](const Stored& value) {
                                 stored = value;
                                 told();
                                 return true;
                             }},
                            {});
    int heard = 0;
    const auto token = categorizer.observe([&] { ++heard; });
    told = [&] { categorizer.reload(); };
    categorizer.setAppCategory(work, "a");
    EXPECT_EQ(heard, 1);
    EXPECT_EQ(categorizer.snapshot().appCategory("a"), work);
}

TEST(Categorizer, snapshotsMayBeTakenWhileChangesAreMade) {
    Settings settings;
    auto categorizer = settings.categorizer();
    std::thread reader([&] {
        for (int i = 0; i < 500; ++i) {
            const auto snapshot = categorizer.snapshot();
            EXPECT_LE(snapshot.appOverrides.size(), 1u);
            EXPECT_LE(snapshot.domainOverrides.size(), 1u);
        }
    });
    for (int i = 0; i < 500; ++i) {
        categorizer.setAppCategory(i % 2 == 0 ? std::optional(work) : std::nullopt, "a");
        categorizer.setDomainCategory(i % 2 == 0 ? std::optional(work) : std::nullopt, "a.org");
    }
    reader.join();
}

TEST(Categorizer, explainsEachQuestionUpToTheOneThatAnswered) {
    using enum CategorySource;
    using Steps = std::vector<CategoryStep>;
    Settings settings;
    settings.apps = Stored{{"org.example.app", "social"}};
    settings.domains = Stored{{"example.org", "work"}};
    const auto snapshot = settings.categorizer().snapshot();
    EXPECT_EQ(snapshot.explained("org.example.app", std::nullopt), (Steps{{appOverride, "org.example.app", social}}));
    EXPECT_EQ(snapshot.explained("a", "sub.example.org"), (Steps{{siteOverride, "sub.example.org", std::nullopt},
                                                                 {builtInSite, "sub.example.org", std::nullopt},
                                                                 {siteOverride, "example.org", work}}));
    EXPECT_EQ(snapshot.explained("com.adobe.Photoshop", "b.org"), (Steps{{siteOverride, "b.org", std::nullopt},
                                                                         {builtInSite, "b.org", std::nullopt},
                                                                         {appOverride, "com.adobe.Photoshop", {}},
                                                                         {builtInApp, "com.adobe.Photoshop", {}},
                                                                         {builtInPrefix, "com.adobe.", work}}));
    EXPECT_EQ(snapshot.explained("a", ""), (Steps{{appOverride, "a", std::nullopt},
                                                  {builtInApp, "a", std::nullopt},
                                                  {builtInPrefix, "a", std::nullopt},
                                                  {host, "a", std::nullopt},
                                                  {nothing, "", other}}));
}

TEST(Categorizer, theExplanationEndsInTheCategory) {
    Settings settings;
    settings.apps = Stored{{"org.mozilla.firefox", "work"}};
    settings.domains = Stored{{"google.com", "social"}, {"a.example.org", "learning"}};
    const auto snapshot = settings.categorizer([](std::string_view) { return entertainment; }).snapshot();
    for (const char* bundleID : {"org.mozilla.firefox", "com.jetbrains.goland", "com.spotify.client", "a", ""})
        for (const char* domain :
             {"", "github.com", "docs.google.com", "x.google.com", "b.a.example.org", "localhost:1"})
            EXPECT_EQ(snapshot.explained(bundleID, domain).back().answer, snapshot.category(bundleID, domain))
                << bundleID << " " << domain;
}

} // namespace
} // namespace kestrio
