// A page of the dashboard on no screen, over a made-up history.
#pragma once

#include "Kestrio/Views/Window/PageModel.h"
#include "Tests/Views/Window/Screen.h"
#include "Tests/Views/Window/WindowStage.h"

namespace kestrio {

template <class Model>
struct PageScreen : WindowStage, Screen {
    PageScreen(const char* file, std::vector<ActivitySession> history, RangeMode mode = RangeMode::day)
        : WindowStage(std::move(history), mode), model(parts) {
        model.setShown(true);
        show(QStringLiteral("Pages/%1.qml").arg(QLatin1StringView(file)), {{"page", QVariant::fromValue(&model)}});
    }
    ~PageScreen() { close(); }
    PageScreen(const PageScreen&) = delete;
    PageScreen& operator=(const PageScreen&) = delete;

    void settle() {
        WindowStage::settle();
        Screen::settle();
    }

    /// Another history, as the next report has it.
    void relive(std::vector<ActivitySession> history) {
        sessions = std::move(history);
        load();
        Screen::settle();
    }

    Model model;
};

} // namespace kestrio
