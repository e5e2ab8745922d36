// The desktop as the main queue may know it without waiting: copies of what the readers on the monitor's queue last
// said. A question answers from memory and asks for news.
//
// Made and dropped on the main queue, which its receivers run on too.
#pragma once

#include "Kestrio/Base/Queue.h"
#include "Kestrio/Base/Signal.h"
#include "Programs/Agent/HostDesktop.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace kestrio {

class DesktopFacts {
public:
    /// The desktop lives on `monitor`; all must outlive this.
    DesktopFacts(Queue& main, Queue& monitor, HostDesktop& desktop)
        : main_(main), monitor_(monitor), desktop_(desktop) {
        monitor_.sync([this] {
            tokens_.push_back(desktop_.workspace.observe([this](WorkspaceNotice notice) { noteWorkspace(notice); }));
            tokens_.push_back(desktop_.sessionEvents.observe([this](const SessionNotice& notice) {
                onMain([notice](DesktopFacts& facts) { facts.session_.emit(notice); });
            }));
            known_ = read(desktop_);
        });
    }
    ~DesktopFacts() {
        monitor_.sync([this] { tokens_.clear(); });
    }
    DesktopFacts(const DesktopFacts&) = delete;
    DesktopFacts& operator=(const DesktopFacts&) = delete;

    const std::optional<RunningApplication>& frontmost() const { return known_.frontmost; }
    const std::vector<RunningApplication>& runningApplications() const { return known_.running; }

    /// As of the question before this one, a tick ago.
    std::optional<Seconds> inputIdle() {
        refresh();
        return known_.inputIdle;
    }

    Subscription observeApplications(std::function<void()> receiver) {
        return applications_.subscribe(std::move(receiver));
    }
    Subscription observeSession(std::function<void(const SessionNotice&)> receiver) {
        return session_.subscribe(std::move(receiver));
    }

private:
    struct Known {
        std::optional<RunningApplication> frontmost;
        std::vector<RunningApplication> running;
        std::optional<Seconds> inputIdle;
    };
    static Known read(HostDesktop& desktop) {
        return {desktop.workspace.frontmostApplication(), desktop.workspace.runningApplications(),
                desktop.inputIdle.sinceLastInput()};
    }

    /// Does something on the main queue, unless this is gone by then. Any queue.
    void onMain(std::function<void(DesktopFacts&)> work) {
        main_.async([weak = std::weak_ptr(self_), work = std::move(work)] {
            if (const auto self = weak.lock())
                work(**self);
        });
    }

    // On the monitor's queue.
    void tell() {
        onMain([known = read(desktop_)](DesktopFacts& facts) { facts.known_ = known; });
    }
    void noteWorkspace(WorkspaceNotice notice) {
        tell();
        if (notice != WorkspaceNotice::activated)
            onMain([](DesktopFacts& facts) { facts.applications_.emit(); });
    }

    /// A browser that hangs holds up the monitor's queue: no second question is put behind the first.
    void refresh() {
        if (std::exchange(isAsking_, true))
            return;
        monitor_.async([weak = std::weak_ptr(self_), &desktop = desktop_, &main = main_] {
            main.async([weak, known = read(desktop)] {
                if (const auto self = weak.lock()) {
                    (*self)->known_ = known;
                    (*self)->isAsking_ = false;
                }
            });
        });
    }

    Queue& main_;
    Queue& monitor_;
    HostDesktop& desktop_;
    std::vector<Subscription> tokens_; // on the monitor's queue
    Known known_;
    bool isAsking_ = false;
    Signal<> applications_;
    Signal<SessionNotice> session_;
    std::shared_ptr<DesktopFacts*> self_ = std::make_shared<DesktopFacts*>(this);
};

} // namespace kestrio
