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
            [this] {
                ++dashboards;
                return dashboardFailure;
            },
            [this](auto files, auto receiver) { return importFiles(std::move(files), std::move(receiver)); },
            [this] { return browsers; },
            LocalBackground::Machine{
                .observeMonitor = [this](auto receiver) { return machine.observeMonitor(std::move(receiver)); },
                .ownCost = [this] { return machine.ownCost(); }});
        model->start();
        pass(2.6);
    }

    VirtualQueue virtualMain{time, "main"};
    Queue& mainQueue;
    ScriptedLoginItem loginItem;
    int dashboards = 0;
    Background::Failure dashboardFailure;
    LocalBackground::ImportFiles importFiles;
    std::vector<BrowserReading> browsers;
    LocalBackground::Machine machine{.observeMonitor = [](const auto&) { return Subscription(); },
                                     .ownCost = [] { return AgentCost(); }};
    std::unique_ptr<AppModel> model;
    std::unique_ptr<LocalBackground> background;
};

} // namespace kestrio
