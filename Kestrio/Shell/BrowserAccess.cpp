#include "Kestrio/Shell/BrowserAccess.h"

#include <utility>

namespace kestrio {

BrowserAccess::BrowserAccess(Queue& main, Queue& worker, const Permissions& permissions)
    : main_(main), worker_(worker), permissions_(permissions), self_(std::make_shared<BrowserAccess*>(this)) {}

template <class Question, class Take>
void BrowserAccess::ask(Question question, Take take) {
    worker_.async([&main = main_, weak = std::weak_ptr(self_), question = std::move(question), take = std::move(take)] {
        main.async([weak, take, answer = question()] {
            if (const auto self = weak.lock())
                take(**self, answer);
        });
    });
}

void BrowserAccess::refresh() {
    const auto question = [&permissions = permissions_] {
        std::vector<BrowserPermission> all;
        for (auto& browser : permissions.installedScriptableBrowsers()) {
            const auto status = permissions.automationStatus(browser.bundleID, Permissions::Asking::no);
            all.push_back({std::move(browser), status});
        }
        return all;
    };
    ask(question, [](BrowserAccess& self, const std::vector<BrowserPermission>& all) { self.take(all); });
}

void BrowserAccess::take(const std::vector<BrowserPermission>& all) {
    auto left = stepsLeft_.value();
    for (const auto& permission : all)
        if (permission.status == AutomationStatus::granted)
            left.erase(permission.browser.bundleID);
    all_.set(all);
    stepsLeft_.set(std::move(left));
}

void BrowserAccess::note(const std::string& bundleID, const std::optional<BrowserStep>& step) {
    auto left = stepsLeft_.value();
    left.erase(bundleID);
    if (step)
        left.emplace(bundleID, *step);
    stepsLeft_.set(std::move(left));
}

void BrowserAccess::request(const BrowserApp& browser) {
    const auto startIfNeeded = [&permissions = permissions_, browser] {
        const auto status = permissions.automationStatus(browser.bundleID, Permissions::Asking::no);
        const bool isStarted = status == AutomationStatus::notRunning;
        if (isStarted)
            permissions.openInBackground(browser);
        return isStarted;
    };
    ask(startIfNeeded, [browser](BrowserAccess& self, bool isStarted) {
        if (!isStarted) {
            self.requestConsent(browser);
            return;
        }
        self.starting_[browser.bundleID] = self.main_.after(patienceAfterStart, [&self, browser] {
            const auto timer = self.starting_.extract(browser.bundleID); // this is its own work
            self.requestConsent(browser);
        });
    });
}

void BrowserAccess::requestConsent(const BrowserApp& browser) {
    const auto question = [&permissions = permissions_, browser] {
        const auto status = permissions.automationStatus(browser.bundleID, Permissions::Asking::ifNeeded);
        if (status == AutomationStatus::denied)
            permissions.openPrivacyPane(Permissions::automationPane);
        return status == AutomationStatus::granted ? std::nullopt : permissions.stepLeft(browser);
    };
    ask(question, [id = browser.bundleID](BrowserAccess& self, const std::optional<BrowserStep>& step) {
        self.note(id, step);
        self.refresh();
    });
}

void BrowserAccess::openStep(const BrowserApp& browser) {
    worker_.async([&permissions = permissions_, browser] { permissions.openStep(browser); });
}

} // namespace kestrio
