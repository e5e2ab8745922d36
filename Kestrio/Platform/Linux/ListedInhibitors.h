// What a service of the desktop lists as keeping the display or the machine awake: kept up to date by asking it anew
// whenever it says that something changed, and without ever waiting for it.
//
// Belongs to the queue of its bus. A service that is missing lists nothing, and one that starts later is found; nothing
// here starts one by asking.
#pragma once

#include "Kestrio/Platform/Linux/WatchedService.h"
#include "Kestrio/Platform/SleepInhibitors.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kestrio {

class ListedInhibitors {
public:
    virtual ~ListedInhibitors();
    ListedInhibitors(const ListedInhibitors&) = delete;
    ListedInhibitors& operator=(const ListedInhibitors&) = delete;

    /// As the service last told.
    virtual std::vector<SleepInhibitor> held() const = 0;

protected:
    /// `changes` is the rest of a match rule, for the signals of the service that announce a change. The bus must
    /// outlive this.
    ListedInhibitors(BusConnection& bus, std::string service, const std::string& path, const std::string& changes);

    /// Asks the service for all that is held. Called when it appeared or announced a change.
    virtual void ask() = 0;

    /// Called when the service is gone, and nothing is held by its word any longer.
    virtual void forget() = 0;

    /// To be called at the end of the constructor: asks, if the service is there.
    void begin() { watched_.begin(); }

    BusConnection& bus() { return watched_.bus(); }
    sdbus::IProxy& service() { return *service_; }
    std::unique_ptr<sdbus::IProxy> proxyOf(const std::string& path);

private:
    std::unique_ptr<sdbus::IProxy> service_;
    WatchedService watched_;
};

/// systemd's login manager. Its "idle" keeps the display awake, its "sleep" the machine; a mere delay holds nothing.
class LogindInhibitors final : public ListedInhibitors {
public:
    /// Only what programs of this user hold counts.
    LogindInhibitors(BusConnection& systemBus, uid_t user);
    std::vector<SleepInhibitor> held() const override { return held_; }

private:
    void ask() override;
    void forget() override { held_.clear(); }

    const uid_t user_;
    std::vector<SleepInhibitor> held_;
};

/// KDE's power management. It lists names of applications, and tells for all together what they keep awake.
class KdeInhibitors final : public ListedInhibitors {
public:
    explicit KdeInhibitors(BusConnection& sessionBus);
    std::vector<SleepInhibitor> held() const override;

private:
    void ask() override;
    void forget() override;

    std::vector<std::string> applications_;
    bool isDisplayKept_ = false;
};

/// GNOME's session manager, and those of other desktops that speak like it.
class GnomeInhibitors final : public ListedInhibitors {
public:
    explicit GnomeInhibitors(BusConnection& sessionBus);
    ~GnomeInhibitors() override;
    std::vector<SleepInhibitor> held() const override;

private:
    struct Inhibitor {
        std::unique_ptr<sdbus::IProxy> proxy;
        std::unique_ptr<sdbus::IProxy> client;
        std::uint32_t flags = 0; // 0 until it has told
        ApplicationTrace holder;
    };

    void ask() override;
    void forget() override;
    void take(const std::vector<std::string>& paths);
    void askAbout(Inhibitor& inhibitor);
    void askForProcess(Inhibitor& inhibitor, const std::string& clientPath);

    std::map<std::string, Inhibitor> inhibitors_; // by path
};

} // namespace kestrio
