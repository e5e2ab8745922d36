// The whole dashboard on no screen, over a made-up history and a scripted agent.
#pragma once

#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Window/DashboardModel.h"
#include "Tests/Examples/ExampleHistory.h"
#include "Tests/Views/Window/Screen.h"
#include "Tests/Views/Window/WindowStage.h"

namespace kestrio {

/// A month of somebody who does so much on a working day.
inline std::vector<ActivitySession> exampleMonth(int sessionsPerWorkday = 250) {
    const Calendar calendar("en_GB", "Europe/Berlin");
    const auto now = calendar.date(2026, 11, 20, 17, 30);
    auto sessions = exampleHistory(now, calendar, {.days = 30, .sessionsPerWorkday = sessionsPerWorkday});
    std::erase_if(sessions, [&](const ActivitySession& session) { return session.end > now; });
    return sessions;
}

struct DashboardOptions {
    std::vector<ActivitySession> history = exampleWorkday();
    std::optional<std::string> page = {};
    RangeMode mode = RangeMode::day;
    std::function<void(WindowStage&)> prepare = [](auto&) {};
};

struct DashboardScreen : WindowStage, Screen {
    explicit DashboardScreen(DashboardOptions options = {})
        : WindowStage(std::move(options.history), options.mode), model(prepared(options)) {
        model.open(options.page);
        settle();
        show("DashboardWindow.qml", {{"model", QVariant::fromValue(&model)}});
    }
    ~DashboardScreen() { close(); }
    DashboardScreen(const DashboardScreen&) = delete;
    DashboardScreen& operator=(const DashboardScreen&) = delete;

    void settle() {
        WindowStage::settle();
        Screen::settle();
    }

    /// The agent is another from now on.
    void tell(const std::function<void(AgentStatus&)>& change) {
        auto status = script.status;
        change(status);
        script.tell(status);
        settle();
    }

    /// All words that show, and those that assistive technology reads.
    QStringList words() const {
        QStringList all;
        for (auto* const item : items([](QQuickItem&) { return true; })) {
            all << item->property("text").toString();
            if (auto* const interface = QAccessible::queryAccessibleInterface(item))
                all << interface->text(QAccessible::Name) << interface->text(QAccessible::Description);
        }
        all.removeAll(QString());
        return all;
    }

private:
    const WindowParts& prepared(const DashboardOptions& options) {
        script.status.isAccessibilityGranted = true;
        options.prepare(*this);
        agent.start(); // sees what was prepared
        return parts;
    }

public:
    DashboardModel model;
};

} // namespace kestrio
