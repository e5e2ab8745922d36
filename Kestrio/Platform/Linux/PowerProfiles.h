// Whether the desktop is set to save power, as power-profiles-daemon says, or what speaks in its place. Kept up to date
// by its notices, without ever waiting for it; a service that starts later is found, and none is started by asking.
//
// Belongs to the queue of its bus. `isSavingPower` alone may be called from any thread.
#pragma once

#include <array>
#include <atomic>
#include <memory>
#include <optional>

namespace kestrio {

class BusConnection;

class PowerProfiles {
public:
    /// The bus must outlive this.
    explicit PowerProfiles(BusConnection& systemBus);
    ~PowerProfiles();
    PowerProfiles(const PowerProfiles&) = delete;
    PowerProfiles& operator=(const PowerProfiles&) = delete;

    /// Absent where no service tells. Never blocks.
    std::optional<bool> isSavingPower() const { return isSaving_; }

private:
    class Service;

    void update();

    std::array<std::unique_ptr<Service>, 2> services_; // the newer name first
    std::atomic<std::optional<bool>> isSaving_{std::nullopt};
};

} // namespace kestrio
