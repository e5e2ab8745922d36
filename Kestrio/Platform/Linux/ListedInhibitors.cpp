#include "Kestrio/Platform/Linux/ListedInhibitors.h"

#include "Kestrio/Platform/Linux/BusConnection.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <sdbus-c++/sdbus-c++.h>
#include <string_view>
#include <utility>

namespace kestrio {
namespace {

constexpr const char* logindName = "org.freedesktop.login1";
constexpr const char* logindPath = "/org/freedesktop/login1";
constexpr const char* logindInterface = "org.freedesktop.login1.Manager";

constexpr const char* kdeName = "org.kde.Solid.PowerManagement.PolicyAgent";
constexpr const char* kdePath = "/org/kde/Solid/PowerManagement/PolicyAgent";
/// The policy that keeps the screen as it is.
constexpr std::uint32_t kdeScreenSettings = 4;

constexpr const char* gnomeName = "org.gnome.SessionManager";
constexpr const char* gnomePath = "/org/gnome/SessionManager";
constexpr std::uint32_t gnomeSuspend = 4;
constexpr std::uint32_t gnomeIdle = 8;

/// Nobody waits for these answers, so a service that is slow to start may take its time.
constexpr std::chrono::seconds patience{25};

/// Whether `word` stands in a list of words with colons between them.
bool hasWord(std::string_view list, std::string_view word) {
    while (!list.empty()) {
        const auto end = std::min(list.find(':'), list.size());
        if (list.substr(0, end) == word)
            return true;
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return false;
}

} // namespace

ListedInhibitors::ListedInhibitors(BusConnection& bus, std::string service, const std::string& path,
                                   const std::string& changes)
    : watched_(bus, std::move(service), path, changes,
               {.ask = [this] { ask(); },
                .forget =
                    [this, path] {
                        service_ = proxyOf(path);
                        forget();
                    }}) {
    service_ = proxyOf(path);
}

ListedInhibitors::~ListedInhibitors() = default;

std::unique_ptr<sdbus::IProxy> ListedInhibitors::proxyOf(const std::string& path) {
    return watched_.proxyOf(path);
}

LogindInhibitors::LogindInhibitors(BusConnection& systemBus, uid_t user)
    : ListedInhibitors(systemBus, logindName, logindPath,
                       fmt::format("interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',arg0='{}'",
                                   logindInterface)),
      user_(user) {
    begin();
}

void LogindInhibitors::ask() {
    // What, who, why, how, the user and the process.
    using Row = sdbus::Struct<std::string, std::string, std::string, std::string, std::uint32_t, std::uint32_t>;
    bus().perform([this](sdbus::IConnection&) {
        service()
            .callMethodAsync("ListInhibitors")
            .onInterface(logindInterface)
            .withTimeout(patience)
            .uponReplyInvoke([this](const sdbus::Error* error, const std::vector<Row>& rows) {
                held_.clear();
                if (error)
                    return;
                for (const auto& row : rows) {
                    if (row.get<4>() != user_ || !row.get<3>().starts_with("block"))
                        continue;
                    const ApplicationTrace holder{static_cast<pid_t>(row.get<5>()), row.get<1>()};
                    if (hasWord(row.get<0>(), "idle"))
                        held_.push_back({holder, assertion::preventUserIdleDisplaySleep});
                    if (hasWord(row.get<0>(), "sleep"))
                        held_.push_back({holder, assertion::preventSystemSleep});
                }
            });
    });
}

KdeInhibitors::KdeInhibitors(BusConnection& sessionBus)
    : ListedInhibitors(sessionBus, kdeName, kdePath,
                       fmt::format("interface='{}',member='InhibitionsChanged'", kdeName)) {
    begin();
}

void KdeInhibitors::ask() {
    using Row = sdbus::Struct<std::string, std::string>; // the application and its reason
    bus().perform([this](sdbus::IConnection&) {
        service()
            .callMethodAsync("ListInhibitions")
            .onInterface(kdeName)
            .withTimeout(patience)
            .uponReplyInvoke([this](const sdbus::Error* error, const std::vector<Row>& rows) {
                applications_.clear();
                if (error)
                    return;
                for (const auto& row : rows)
                    applications_.push_back(row.get<0>());
            });
        service()
            .callMethodAsync("HasInhibition")
            .onInterface(kdeName)
            .withTimeout(patience)
            .withArguments(kdeScreenSettings)
            .uponReplyInvoke([this](const sdbus::Error* error, bool isKept) { isDisplayKept_ = !error && isKept; });
    });
}

void KdeInhibitors::forget() {
    applications_.clear();
    isDisplayKept_ = false;
}

std::vector<SleepInhibitor> KdeInhibitors::held() const {
    const char* type = isDisplayKept_ ? assertion::preventUserIdleDisplaySleep : assertion::preventSystemSleep;
    std::vector<SleepInhibitor> result;
    for (const auto& application : applications_)
        result.push_back({{std::nullopt, application}, type});
    return result;
}

GnomeInhibitors::GnomeInhibitors(BusConnection& sessionBus)
    : ListedInhibitors(sessionBus, gnomeName, gnomePath, fmt::format("interface='{}'", gnomeName)) {
    begin();
}

GnomeInhibitors::~GnomeInhibitors() = default;

void GnomeInhibitors::ask() {
    bus().perform([this](sdbus::IConnection&) {
        service()
            .callMethodAsync("GetInhibitors")
            .onInterface(gnomeName)
            .withTimeout(patience)
            .uponReplyInvoke([this](const sdbus::Error* error, const std::vector<sdbus::ObjectPath>& paths) {
                take(error ? std::vector<std::string>() : std::vector<std::string>(paths.begin(), paths.end()));
            });
    });
}

void GnomeInhibitors::forget() {
    inhibitors_.clear();
}

void GnomeInhibitors::take(const std::vector<std::string>& paths) {
    std::erase_if(inhibitors_,
                  [&](const auto& known) { return std::find(paths.begin(), paths.end(), known.first) == paths.end(); });
    for (const auto& path : paths)
        if (const auto [place, isNew] = inhibitors_.try_emplace(path); isNew) {
            place->second.proxy = proxyOf(path);
            askAbout(place->second);
        }
}

void GnomeInhibitors::askAbout(Inhibitor& inhibitor) {
    constexpr const char* interface = "org.gnome.SessionManager.Inhibitor";
    bus().perform([&](sdbus::IConnection&) {
        inhibitor.proxy->callMethodAsync("GetFlags")
            .onInterface(interface)
            .withTimeout(patience)
            .uponReplyInvoke([&inhibitor](const sdbus::Error* error, std::uint32_t flags) {
                if (!error)
                    inhibitor.flags = flags;
            });
        inhibitor.proxy->callMethodAsync("GetAppId")
            .onInterface(interface)
            .withTimeout(patience)
            .uponReplyInvoke([&inhibitor](const sdbus::Error* error, const std::string& name) {
                if (!error)
                    inhibitor.holder.name = name;
            });
        inhibitor.proxy->callMethodAsync("GetClientId")
            .onInterface(interface)
            .withTimeout(patience)
            .uponReplyInvoke([this, &inhibitor](const sdbus::Error* error, const sdbus::ObjectPath& client) {
                if (!error && client.size() > 1) // "/" stands for none
                    askForProcess(inhibitor, client);
            });
    });
}

void GnomeInhibitors::askForProcess(Inhibitor& inhibitor, const std::string& clientPath) {
    inhibitor.client = proxyOf(clientPath);
    bus().perform([&](sdbus::IConnection&) {
        inhibitor.client->callMethodAsync("GetUnixProcessId")
            .onInterface("org.gnome.SessionManager.Client")
            .withTimeout(patience)
            .uponReplyInvoke([&inhibitor](const sdbus::Error* error, std::uint32_t process) {
                if (!error && process > 0)
                    inhibitor.holder.process = static_cast<pid_t>(process);
            });
    });
}

std::vector<SleepInhibitor> GnomeInhibitors::held() const {
    std::vector<SleepInhibitor> result;
    for (const auto& [path, inhibitor] : inhibitors_) {
        if ((inhibitor.flags & gnomeIdle) != 0)
            result.push_back({inhibitor.holder, assertion::preventUserIdleDisplaySleep});
        if ((inhibitor.flags & gnomeSuspend) != 0)
            result.push_back({inhibitor.holder, assertion::preventSystemSleep});
    }
    return result;
}

} // namespace kestrio
