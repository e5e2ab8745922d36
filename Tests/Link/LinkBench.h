// The agent's side without its host: the model over a real monitor in virtual time, and the `Background` on top.
#pragma once

#include "Kestrio/Link/LocalBackground.h"
#include "Kestrio/Platform/Testing/ScriptedLoginItem.h"
#include "Tests/Activity/MonitorBench.h"

namespace kestrio {

struct LinkBench : MonitorBench {
    /// `main` is the model's queue; the bench is made, used and dropped in its work when it is not virtual.
    LinkBench() : LinkBench(nullptr) {}
    explicit LinkBench(Queue* main) : mainQueue(main ? *main : virtualMain) {
        make();
        show("org.example.editor", "Draft");
        model = std::make_unique<AppModel>(AppModel::Parts{time, mainQueue, *monitor, settings, loginItem});
        background = std::make_unique<LocalBackground>(
            *model, LocalBackground::Facts{"1.2.3", 4711, "/home/ada/data/Kestrio", origin},
            LocalBackground::Services{
                .openWindow =
                    [this](const WindowRequest& request) {
                        windows.push_back(request);
                        return windowFailure;
                    },
                .importFiles = [this](auto files,
                                      auto receiver) { return importFiles(std::move(files), std::move(receiver)); },
                .deleteActivity =
                    [this](auto before, const auto& deleted) {
                        deletions.push_back(before);
                        deleted();
                    },
                .deleteResourceLog = [this] { ++logDeletions; },
                .browsers = [this] { return browsers; },
                .observeBrowsers = [this](auto receiver) { return browserChanges.subscribe(std::move(receiver)); },
                .observeMonitor = [this](auto receiver) { return observeMonitor(std::move(receiver)); },
                .ownCost = [this] { return ownCost; },
                .quit = [this] { ++quits; },
            });
        model->start();
        pass(2.6);
    }

    VirtualQueue virtualMain{time, "main"};
    Queue& mainQueue;
    ScriptedLoginItem loginItem;
    std::vector<WindowRequest> windows; // that were asked for
    Background::Failure windowFailure;
    LocalBackground::ImportFiles importFiles;
    std::vector<std::optional<Date>> deletions;
    int logDeletions = 0;
    std::vector<BrowserReading> browsers;
    Signal<> browserChanges;
    LocalBackground::ObserveMonitor observeMonitor = [](const auto&) { return Subscription(); };
    AgentCost ownCost;
    int quits = 0;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<LocalBackground> background;
};

} // namespace kestrio
