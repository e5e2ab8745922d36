// What the settings look at, beside what all windows do: settings with the registered values, a made-up archive, an
// optimizer and a login item.
#pragma once

#include "Kestrio/Platform/Testing/ScriptedLoginItem.h"
#include "Kestrio/Views/Window/ActivityArchive.h"
#include "Tests/Views/Window/ScriptedOptimizer.h"
#include "Tests/Views/Window/WindowStage.h"

#include <algorithm>
#include <functional>
#include <map>

namespace kestrio {

class ScriptedArchive final : public ActivityArchive {
public:
    DataSettings::Stored facts{"activity.sqlite", 2'300'000, 12'345, Date(1'790'000'000)};
    std::vector<NamedTotal> apps{{"org.example.Browser", "Browser", Seconds(7200)},
                                 {"com.jetbrains.clion", "CLion", Seconds(3600)}};
    std::vector<NamedTotal> domains{{"example.org", "example.org", Seconds(600)}};
    std::vector<ActivitySession> history = {};

    DataSettings::Stored stored() override { return facts; }
    std::vector<NamedTotal> appTotals() override { return apps; }
    std::vector<NamedTotal> domainTotals() override { return domains; }
    FoundSessions sessions(DateInterval /*interval*/) override { return history; }
};

/// The time of each application or site, by what `named` makes of a session; the most first.
inline std::vector<NamedTotal> totalsOf(const std::vector<ActivitySession>& history,
                                        const std::function<std::optional<NamedTotal>(const ActivitySession&)>& named) {
    std::map<std::string, NamedTotal> totals;
    for (const auto& session : history) {
        const auto one = named(session);
        if (one)
            totals.try_emplace(one->id, *one).first->second.duration += session.end - session.start;
    }
    std::vector<NamedTotal> all;
    for (const auto& [id, total] : totals)
        all.push_back(total);
    std::ranges::stable_sort(all, std::greater(), &NamedTotal::duration);
    return all;
}

struct SettingsStage : WindowStage {
    explicit SettingsStage(std::vector<ActivitySession> history = {}, RangeMode mode = RangeMode::day,
                           Agent presence = Agent::there)
        : WindowStage(std::move(history), mode, presence) {
        AppSettings::registerDefaults(settings, nullptr, "dev.test");
        script.optimizer = &optimizer;
        optimizer.apps = {
            {.id = "org.example.Chat", .name = "Chat"},
            {.id = "org.example.Terminal", .name = "Terminal", .protection = tindra::Protection::essential},
            {.id = "org.example.Mail", .name = "Mail"}};
        parts.host.historyFile = "/home/robin/.local/share/Kestrio/activity.sqlite";
        parts.loginItem = &loginItem;
        parts.archive = &archiveLink;
        parts.host.systemInfo = [] { return std::string("Kestrio 1.2.3\nmacOS version 13"); };
        parts.host.showInFiles = [this](const auto& file) { shownFiles.push_back(file.filename().string()); };
    }

    /// The archive tells of this stage's own history.
    void archiveHistory() {
        archive.history = sessions;
        archive.apps = totalsOf(sessions, [](const ActivitySession& session) {
            return std::optional(NamedTotal{session.bundleID, session.appName, {}});
        });
        archive.domains = totalsOf(sessions, [](const ActivitySession& session) {
            return session.domain ? std::optional(NamedTotal{*session.domain, *session.domain, {}}) : std::nullopt;
        });
        archive.facts.sessions = std::ssize(sessions);
    }

    ScriptedOptimizer optimizer{settings};
    ScriptedArchive archive;
    ArchiveLink archiveLink{main, loading, archive};
    ScriptedLoginItem loginItem;
    std::vector<std::string> shownFiles;
};

} // namespace kestrio
