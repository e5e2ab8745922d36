#include "Kestrio/Link/WindowService.h"

#include "Kestrio/Link/BusNames.h"

#include <sdbus-c++/sdbus-c++.h>
#include <utility>

namespace kestrio {
namespace {

std::optional<std::string> unlessEmpty(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

PanelRequest panelRequest(const std::string& kind, bool atPoint, int x, int y) {
    const auto known = panelKind(kind);
    if (!known)
        throw sdbus::Error(busNames::errorInvalid, "the panels are today and system");
    return {*known, atPoint ? std::optional(ScreenPoint{x, y}) : std::nullopt};
}

} // namespace

std::unique_ptr<WindowService> WindowService::offer(const std::string& busAddress, Queue& queue, Receiver receiver,
                                                    std::function<void()> quit) {
    try {
        std::unique_ptr<WindowService> service(new WindowService(
            sdbus::createSessionBusConnectionWithAddress(busAddress), queue, {std::move(receiver), std::move(quit)}));
        // The object stands before the name does, so that nobody finds the one without the other.
        service->registerObject();
        service->connection_->requestName(busNames::windowService);
        service->thread_ = std::thread([&connection = *service->connection_] {
            try {
                connection.enterEventLoop();
            } catch (const sdbus::Error&) {
                // The bus went, and the person's session with it.
            }
        });
        return service;
    } catch (const sdbus::Error&) {
        return nullptr;
    }
}

WindowService::WindowService(std::unique_ptr<sdbus::IConnection> connection, Queue& queue, Receivers receivers)
    : connection_(std::move(connection)),
      queue_(queue),
      receivers_(std::make_shared<const Receivers>(std::move(receivers))) {}

WindowService::~WindowService() {
    if (thread_.joinable()) {
        connection_->leaveEventLoop();
        thread_.join();
    }
}

void WindowService::registerObject() {
    constexpr auto interface = busNames::windowInterface;
    object_ = sdbus::createObject(*connection_, busNames::windowObject);
    object_->registerMethod("ShowDashboard")
        .onInterface(interface)
        .withInputParamNames("page")
        .implementedAs([this](const std::string& page) { handOver(DashboardRequest{unlessEmpty(page)}); });
    object_->registerMethod("ShowPanel")
        .onInterface(interface)
        .withInputParamNames("kind", "atPoint", "x", "y")
        .implementedAs([this](const std::string& kind, bool atPoint, std::int32_t x, std::int32_t y) {
            handOver(panelRequest(kind, atPoint, x, y));
        });
    object_->registerMethod("ShowSettings")
        .onInterface(interface)
        .withInputParamNames("tab")
        .implementedAs([this](const std::string& tab) { handOver(SettingsRequest{unlessEmpty(tab)}); });
    object_->registerMethod("ProvideActivationToken")
        .onInterface(interface)
        .withInputParamNames("token")
        .implementedAs([this](const std::string& token) { activationToken_ = token; });
    object_->registerMethod("Quit").onInterface(interface).implementedAs(
        [this] { later([](const Receivers& receivers) { receivers.quit(); }); });
    object_->finishRegistration();
}

void WindowService::handOver(WindowRequest request) {
    later([request = std::move(request), token = std::exchange(activationToken_, {})](const Receivers& receivers) {
        receivers.show(request, token);
    });
}

void WindowService::later(std::function<void(const Receivers&)> work) {
    queue_.async([weak = std::weak_ptr(receivers_), work = std::move(work)] {
        if (const auto receivers = weak.lock())
            work(*receivers);
    });
}

} // namespace kestrio
