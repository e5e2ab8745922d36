#include "Kestrio/Link/WindowClient.h"

#include "Kestrio/Link/BusNames.h"

#include <chrono>
#include <memory>
#include <sdbus-c++/sdbus-c++.h>

namespace kestrio {
namespace {

class Caller {
public:
    explicit Caller(sdbus::IConnection& connection)
        : proxy_(sdbus::createProxy(connection, busNames::windowService, busNames::windowObject)) {}

    void operator()(const DashboardRequest& request) { call("ShowDashboard", request.page.value_or("")); }
    void operator()(const PanelRequest& request) {
        const auto at = request.at.value_or(ScreenPoint());
        call("ShowPanel", std::string(rawValue(request.kind)), request.at.has_value(), std::int32_t{at.x},
             std::int32_t{at.y});
    }
    void operator()(const SettingsRequest& request) { call("ShowSettings", request.tab.value_or("")); }

    void provide(const std::string& activationToken) { call("ProvideActivationToken", activationToken); }
    void quit() { call("Quit"); }

private:
    template <class... Arguments>
    void call(const char* method, const Arguments&... arguments) {
        proxy_->callMethod(method)
            .onInterface(busNames::windowInterface)
            .withTimeout(std::chrono::duration_cast<std::chrono::microseconds>(WindowClient::callDeadline))
            .withArguments(arguments...);
    }

    std::unique_ptr<sdbus::IProxy> proxy_;
};

} // namespace

std::optional<WindowClient> WindowClient::connect(const std::string& busAddress) {
    try {
        std::shared_ptr connection = sdbus::createSessionBusConnectionWithAddress(busAddress);
        return WindowClient([connection](const auto& work) {
            try {
                work(*connection);
                return true;
            } catch (const sdbus::Error&) {
                return false;
            }
        });
    } catch (const sdbus::Error&) {
        return std::nullopt;
    }
}

bool WindowClient::isRunning() {
    bool answer = false;
    perform_([&](sdbus::IConnection& connection) {
        sdbus::createProxy(connection, "org.freedesktop.DBus", "/org/freedesktop/DBus")
            ->callMethod("NameHasOwner")
            .onInterface("org.freedesktop.DBus")
            .withArguments(std::string(busNames::windowService))
            .storeResultsTo(answer);
    });
    return answer;
}

bool WindowClient::show(const WindowRequest& request, const std::string& activationToken) {
    return perform_([&](sdbus::IConnection& connection) {
        Caller caller(connection);
        if (!activationToken.empty())
            caller.provide(activationToken);
        std::visit(caller, request);
    });
}

void WindowClient::quit() {
    perform_([](sdbus::IConnection& connection) { Caller(connection).quit(); });
}

std::string WindowClient::appearingRule() {
    return std::string("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                       "member='NameOwnerChanged',arg0='") +
           busNames::windowService + "',arg1=''";
}

} // namespace kestrio
