#include "Kestrio/Model/Models.h"

#include "Kestrio/Base/Text.h"

#include <algorithm>

namespace kestrio {
namespace {

struct CategoryFacts {
    std::string_view rawValue;
    std::string_view label;
    SystemColor color;
    Productivity productivity;
};

const CategoryFacts& facts(ActivityCategory category) {
    using enum Productivity;
    static constexpr std::array<CategoryFacts, allActivityCategories.size()> table{{
        {"development", "Development", SystemColor::blue, productive},
        {"work", "Work & Docs", SystemColor::teal, productive},
        {"learning", "Learning & AI", SystemColor::purple, productive},
        {"communication", "Communication", SystemColor::orange, neutral},
        {"entertainment", "Entertainment", SystemColor::red, distracting},
        {"social", "Social Media", SystemColor::brown, distracting},
        {"other", "Other", SystemColor::gray, neutral},
    }};
    return table[static_cast<std::size_t>(category)];
}

/// The case whose raw value is exactly the text.
template <class Case, std::size_t count>
std::optional<Case> caseNamed(std::string_view text, const std::array<Case, count>& all) {
    const auto found = std::find_if(all.begin(), all.end(), [&](Case one) { return rawValue(one) == text; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

/// Feeds one field after the other into a hash, in order.
class Hasher {
public:
    void feed(std::size_t value) { value_ ^= value + 0x9E3779B97F4A7C15 + (value_ << 6) + (value_ >> 2); }
    void feed(std::string_view text) { feed(text::hash(text)); }
    void feed(const std::optional<std::string>& text) {
        feed(std::size_t{text ? 1u : 0u});
        if (text)
            feed(std::string_view(*text));
    }
    void feed(Date date) { feed(std::hash<double>()(date.seconds())); }
    std::size_t value() const { return value_; }

private:
    std::size_t value_ = 0;
};

template <class Record>
void feedSample(Hasher& hasher, const Record& record) {
    hasher.feed(std::string_view(record.bundleID));
    hasher.feed(std::string_view(record.appName));
    hasher.feed(std::string_view(record.title));
    hasher.feed(record.url);
    hasher.feed(record.domain);
    hasher.feed(record.project);
    hasher.feed(static_cast<std::size_t>(rawValue(record.kind)));
}

/// The seven fields that a sample and a session share. The cheap and telling ones come first.
template <class Record>
bool sameSample(const Record& a, const Record& b) {
    return a.kind == b.kind && text::equivalent(a.bundleID, b.bundleID) && text::equivalent(a.title, b.title) &&
           text::equivalent(a.url, b.url) && text::equivalent(a.appName, b.appName) &&
           text::equivalent(a.domain, b.domain) && text::equivalent(a.project, b.project);
}

} // namespace

std::optional<SessionKind> sessionKind(std::int64_t raw) {
    for (const auto kind : allSessionKinds)
        if (rawValue(kind) == raw)
            return kind;
    return std::nullopt;
}

std::string_view label(SessionKind kind) {
    switch (kind) {
    case SessionKind::focus: return "Focused";
    case SessionKind::watching: return "Watching";
    case SessionKind::listening: return "Listening";
    }
    return {};
}

std::string_view rawValue(Productivity productivity) {
    switch (productivity) {
    case Productivity::productive: return "productive";
    case Productivity::neutral: return "neutral";
    case Productivity::distracting: return "distracting";
    }
    return {};
}

std::string_view rawValue(ActivityCategory category) {
    return facts(category).rawValue;
}

std::optional<ActivityCategory> activityCategory(std::string_view rawValue) {
    return caseNamed(rawValue, allActivityCategories);
}

std::string_view label(ActivityCategory category) {
    return facts(category).label;
}

SystemColor color(ActivityCategory category) {
    return facts(category).color;
}

Productivity productivity(ActivityCategory category) {
    return facts(category).productivity;
}

std::string_view rawValue(TrackingState state) {
    switch (state) {
    case TrackingState::tracking: return "tracking";
    case TrackingState::idle: return "idle";
    case TrackingState::away: return "away";
    case TrackingState::paused: return "paused";
    }
    return {};
}

std::optional<TrackingState> trackingState(std::string_view rawValue) {
    return caseNamed(rawValue, allTrackingStates);
}

bool operator==(const ActivitySample& a, const ActivitySample& b) {
    return sameSample(a, b);
}

bool operator==(const ActivitySession& a, const ActivitySession& b) {
    return a.id == b.id && a.start == b.start && a.end == b.end && sameSample(a, b);
}

ActivitySession activitySession(std::int64_t id, const ActivitySample& sample, Date start, Date end) {
    return {id,           start,      end,           sample.bundleID, sample.appName,
            sample.title, sample.url, sample.domain, sample.project,  sample.kind};
}

} // namespace kestrio

std::size_t std::hash<kestrio::ActivitySample>::operator()(const kestrio::ActivitySample& sample) const noexcept {
    kestrio::Hasher hasher;
    kestrio::feedSample(hasher, sample);
    return hasher.value();
}

std::size_t std::hash<kestrio::ActivitySession>::operator()(const kestrio::ActivitySession& session) const noexcept {
    kestrio::Hasher hasher;
    hasher.feed(static_cast<std::size_t>(session.id));
    hasher.feed(session.start);
    hasher.feed(session.end);
    kestrio::feedSample(hasher, session);
    return hasher.value();
}
