// Desktops for tests: each answers what the test last put into its fields, and announces what the test tells it to.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Platform/InputIdle.h"
#include "Kestrio/Platform/WindowTitles.h"
#include "Kestrio/Platform/Workspace.h"

#include <map>

namespace kestrio {

class ScriptedWorkspace final : public Workspace {
public:
    std::optional<RunningApplication> front;
    std::vector<RunningApplication> running;
    std::map<std::string, std::string> names;
    std::vector<std::string> opened;
    std::vector<RunningApplication> terminated;

    void announce(WorkspaceNotice notice) { notices_.emit(notice); }
    bool isObserved() const { return notices_.hasReceivers(); }

    std::optional<RunningApplication> frontmostApplication() override { return front; }
    std::vector<RunningApplication> runningApplications() override { return running; }
    Subscription observe(std::function<void(WorkspaceNotice)> receiver) override {
        ++observations;
        return notices_.subscribe(std::move(receiver));
    }
    std::optional<std::string> applicationName(const std::string& bundleIdentifier) override {
        const auto found = names.find(bundleIdentifier);
        return found == names.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<std::string> applicationIcon(const std::string&) override { return std::nullopt; }
    bool open(const std::string& fileOrAddress) override {
        opened.push_back(fileOrAddress);
        return true;
    }
    bool terminate(const RunningApplication& application) override {
        terminated.push_back(application);
        return true;
    }

    int observations = 0;

private:
    Signal<WorkspaceNotice> notices_;
};

class ScriptedWindowTitles final : public WindowTitles {
public:
    std::map<pid_t, std::string> titles;
    bool granted = true;

    std::optional<std::string> focusedWindowTitle(pid_t processIdentifier) override {
        const auto found = titles.find(processIdentifier);
        return found == titles.end() ? std::nullopt : std::optional(found->second);
    }
    bool isGranted() override { return granted; }
};

class ScriptedInputIdle final : public InputIdle {
public:
    std::optional<Seconds> idle = Seconds(0);

    std::optional<Seconds> sinceLastInput() override { return idle; }
};

} // namespace kestrio
