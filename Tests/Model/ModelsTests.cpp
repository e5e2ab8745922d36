#include "Kestrio/Model/Models.h"
#include "Kestrio/Model/ModelsJSON.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <rapidcheck/gtest.h>
#include <unordered_set>

namespace kestrio {
namespace {

const ActivitySample full{"org.example.app", "App",     "A title",         "https://example.org/a",
                          "example.org",     "kestrel", SessionKind::focus};

/// The sample with each single field changed in turn.
std::vector<ActivitySample> variations() {
    std::vector<ActivitySample> all(7, full);
    all[0].bundleID = "org.example.other";
    all[1].appName = "Other";
    all[2].title = "";
    all[3].url.reset();
    all[4].domain = "";
    all[5].project.reset();
    all[6].kind = SessionKind::watching;
    return all;
}

TEST(ActivitySample, isTheSameActivityOnlyWhenAllSevenFieldsAreEqual) {
    EXPECT_EQ(full, ActivitySample(full));
    for (std::size_t i = 0; i < variations().size(); ++i)
        EXPECT_NE(full, variations()[i]) << "field " << i;
    std::unordered_set<std::size_t> hashes{std::hash<ActivitySample>()(full)};
    for (const auto& other : variations())
        hashes.insert(std::hash<ActivitySample>()(other));
    EXPECT_EQ(hashes.size(), 8u);
}

TEST(ActivitySample, anAbsentProjectDiffersFromAnEmptyOne) {
    auto absent = full;
    absent.project.reset();
    auto empty = full;
    empty.project = "";
    EXPECT_NE(absent, empty);
    absent = empty;
    absent.url.reset();
    empty.url = "";
    EXPECT_NE(absent, empty);
}

TEST(ActivitySample, twoEncodingsOfOneTitleAreOneActivity) {
    auto composed = full;
    composed.title = "Caf\u00E9";
    auto decomposed = full;
    decomposed.title = "Cafe\u0301";
    EXPECT_EQ(composed, decomposed);
    EXPECT_EQ(std::hash<ActivitySample>()(composed), std::hash<ActivitySample>()(decomposed));
}

TEST(LiveActivity, comparesAllFourFields) {
    const LiveActivity live{full, Date(10), Date(12), 7};
    EXPECT_EQ(live, LiveActivity(live));
    EXPECT_NE(live, (LiveActivity{full, Date(11), Date(12), 7}));
    EXPECT_NE(live, (LiveActivity{full, Date(10), Date(13), 7}));
    EXPECT_NE(live, (LiveActivity{full, Date(10), Date(12), std::nullopt}));
    EXPECT_NE(live, (LiveActivity{variations()[0], Date(10), Date(12), 7}));
}

TEST(ActivitySession, comparesAllTenFields) {
    const auto session = activitySession(3, full, Date(10), Date(12.5));
    EXPECT_EQ(session.duration(), Seconds(2.5));
    EXPECT_EQ(session.sample(), full);
    EXPECT_EQ(session, ActivitySession(session));
    std::unordered_set<std::size_t> hashes{std::hash<ActivitySession>()(session)};
    std::vector<ActivitySession> others{activitySession(4, full, Date(10), Date(12.5)),
                                        activitySession(3, full, Date(9), Date(12.5)),
                                        activitySession(3, full, Date(10), Date(12))};
    for (const auto& sample : variations())
        others.push_back(activitySession(3, sample, Date(10), Date(12.5)));
    for (const auto& other : others) {
        EXPECT_NE(session, other);
        hashes.insert(std::hash<ActivitySession>()(other));
    }
    EXPECT_EQ(hashes.size(), 11u);
}

TEST(SessionKind, hasItsRawValuesAndLabelsInOrder) {
    struct Row {
        SessionKind kind;
        std::int64_t raw;
        const char* label;
    };
    const Row rows[] = {{SessionKind::focus, 0, "Focused"},
                        {SessionKind::watching, 1, "Watching"},
                        {SessionKind::listening, 2, "Listening"}};
    ASSERT_EQ(allSessionKinds.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(allSessionKinds[i], rows[i].kind);
        EXPECT_EQ(rawValue(rows[i].kind), rows[i].raw);
        EXPECT_EQ(sessionKind(rows[i].raw), rows[i].kind);
        EXPECT_EQ(label(rows[i].kind), rows[i].label);
    }
    for (const std::int64_t raw : {std::int64_t{-1}, std::int64_t{3}, INT64_MAX, INT64_MIN})
        EXPECT_EQ(sessionKind(raw), std::nullopt) << raw;
}

TEST(ActivityCategory, hasItsTextsColoursAndProductivityInOrder) {
    using enum ActivityCategory;
    struct Row {
        ActivityCategory category;
        const char* raw;
        const char* label;
        SystemColor color;
        Productivity productivity;
    };
    const Row rows[] = {
        {development, "development", "Development", SystemColor::blue, Productivity::productive},
        {work, "work", "Work & Docs", SystemColor::teal, Productivity::productive},
        {learning, "learning", "Learning & AI", SystemColor::purple, Productivity::productive},
        {communication, "communication", "Communication", SystemColor::orange, Productivity::neutral},
        {entertainment, "entertainment", "Entertainment", SystemColor::red, Productivity::distracting},
        {social, "social", "Social Media", SystemColor::brown, Productivity::distracting},
        {other, "other", "Other", SystemColor::gray, Productivity::neutral},
    };
    ASSERT_EQ(allActivityCategories.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const auto& row = rows[i];
        EXPECT_EQ(allActivityCategories[i], row.category) << row.raw;
        EXPECT_EQ(rawValue(row.category), row.raw);
        EXPECT_EQ(activityCategory(row.raw), row.category) << row.raw;
        EXPECT_EQ(label(row.category), row.label) << row.raw;
        EXPECT_EQ(color(row.category), row.color) << row.raw;
        EXPECT_EQ(productivity(row.category), row.productivity) << row.raw;
    }
    for (const char* text : {"Work", "", " work", "games"})
        EXPECT_EQ(activityCategory(text), std::nullopt) << text;
}

TEST(Productivity, hasItsRawTextsInOrder) {
    ASSERT_EQ(allProductivities.size(), 3u);
    EXPECT_EQ(rawValue(allProductivities[0]), "productive");
    EXPECT_EQ(rawValue(allProductivities[1]), "neutral");
    EXPECT_EQ(rawValue(allProductivities[2]), "distracting");
}

TEST(TrackingState, hasItsRawTextsInOrder) {
    const char* texts[] = {"tracking", "idle", "away", "paused"};
    ASSERT_EQ(allTrackingStates.size(), std::size(texts));
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        EXPECT_EQ(rawValue(allTrackingStates[i]), texts[i]);
        EXPECT_EQ(trackingState(texts[i]), allTrackingStates[i]);
    }
    EXPECT_EQ(trackingState("Tracking"), std::nullopt);
}

TEST(ModelsJSON, usesTheFieldNamesAndNullForWhatIsAbsent) {
    auto sample = full;
    sample.project.reset();
    EXPECT_EQ(toJSON(activitySession(5, sample, Date(1.5), Date(2))).dump(),
              R"({"id":5,"start":1.5,"end":2.0,"bundleID":"org.example.app","appName":"App","title":"A title",)"
              R"("url":"https://example.org/a","domain":"example.org","project":null,"kind":0})");
    EXPECT_EQ(toJSON(LiveActivity{sample, Date(1), Date(2), std::nullopt}).dump(),
              R"({"sample":{"bundleID":"org.example.app","appName":"App","title":"A title",)"
              R"("url":"https://example.org/a","domain":"example.org","project":null,"kind":0},)"
              R"("start":1.0,"lastSeen":2.0,"rowID":null})");
}

TEST(ModelsJSON, aLiveActivityComesBackAsItWas) {
    for (const auto& sample : variations())
        for (const auto row : {std::optional<std::int64_t>(), std::optional<std::int64_t>(9)}) {
            const LiveActivity live{sample, Date(1.25), Date(1e9), row};
            EXPECT_EQ(liveActivityFromJSON(toJSON(live)), live);
        }
}

TEST(ModelsJSON, aLiveActivityThatLacksSomethingIsAbsent) {
    const auto whole = toJSON(LiveActivity{full, Date(1), Date(2), 3});
    for (const char* key : {"sample", "start", "lastSeen"}) {
        auto broken = whole;
        broken.erase(key);
        EXPECT_EQ(liveActivityFromJSON(broken), std::nullopt) << key;
    }
    for (const auto& [key, value] : whole["sample"].items()) {
        auto broken = whole;
        broken["sample"][key] = nlohmann::ordered_json::array();
        EXPECT_EQ(liveActivityFromJSON(broken), std::nullopt) << key;
    }
    auto broken = whole;
    broken["sample"]["kind"] = 3;
    EXPECT_EQ(liveActivityFromJSON(broken), std::nullopt);
    EXPECT_EQ(liveActivityFromJSON("text"), std::nullopt);
}

} // namespace
} // namespace kestrio
