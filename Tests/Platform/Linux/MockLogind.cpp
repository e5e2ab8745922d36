#include "Tests/Platform/Linux/MockLogind.h"

#include <algorithm>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace kestrio {
namespace {

constexpr const char* managerInterface = "org.freedesktop.login1.Manager";
constexpr const char* userInterface = "org.freedesktop.login1.User";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
constexpr const char* sessionPath = "/org/freedesktop/login1/session/c7";
constexpr const char* userPath = "/org/freedesktop/login1/user/_1000";

} // namespace

MockLogind::MockLogind(const std::string& busAddress, const Script& script)
    : script_(script), locked_(script.locked), active_(script.active), bus_(busAddress) {
    serveManager();
    serveUser();
    serveSession();
    bus_.serve("org.freedesktop.login1");
}

MockLogind::~MockLogind() {
    bus_.stop();
    unanswered_.clear();
    session_.reset();
    user_.reset();
    manager_.reset();
    for (const int pipe : lockPipes_)
        close(pipe);
}

void MockLogind::serveManager() {
    manager_ = sdbus::createObject(bus_.connection(), "/org/freedesktop/login1");
    const auto answer = [this](bool known) {
        return [this, known](sdbus::Result<sdbus::ObjectPath>&& result, auto) {
            if (script_.silent) {
                const std::lock_guard guard(mutex_);
                unanswered_.push_back(std::move(result));
            } else if (known) {
                result.returnResults(sdbus::ObjectPath(sessionPath));
            } else {
                result.returnError(sdbus::Error("org.freedesktop.login1.NoSuchSession", "none"));
            }
        };
    };
    manager_->registerMethod("GetSessionByPID")
        .onInterface(managerInterface)
        .implementedAs(
            [inner = answer(script_.knowsProcess)](sdbus::Result<sdbus::ObjectPath>&& result, std::uint32_t process) {
                inner(std::move(result), process);
            });
    manager_->registerMethod("GetSession")
        .onInterface(managerInterface)
        .implementedAs([inner = answer(script_.knowsIdentifier)](sdbus::Result<sdbus::ObjectPath>&& result,
                                                                 std::string identifier) {
            inner(std::move(result), identifier);
        });
    manager_->registerMethod("GetUser")
        .onInterface(managerInterface)
        .implementedAs([this](sdbus::Result<sdbus::ObjectPath>&& result, std::uint32_t) {
            const std::lock_guard guard(mutex_);
            if (script_.silent)
                unanswered_.push_back(std::move(result));
            else
                result.returnResults(sdbus::ObjectPath(userPath));
        });
    manager_->registerMethod("Inhibit")
        .onInterface(managerInterface)
        .implementedAs(
            [this](const std::string& what, const std::string& who, const std::string&, const std::string& mode) {
                int ends[2];
                if (pipe2(ends, O_CLOEXEC) != 0)
                    throw sdbus::Error("org.freedesktop.DBus.Error.Failed", "no pipe");
                const std::lock_guard guard(mutex_);
                lockPipes_.push_back(ends[0]);
                inhibitions_.push_back(what + "|" + who + "|" + mode);
                return sdbus::UnixFd(ends[1], sdbus::adopt_fd);
            });
    manager_->finishRegistration();
}

void MockLogind::serveUser() {
    user_ = sdbus::createObject(bus_.connection(), userPath);
    user_->registerProperty("Display").onInterface(userInterface).withGetter([this] {
        return script_.hasDisplaySession
                   ? sdbus::Struct<std::string, sdbus::ObjectPath>("c7", sdbus::ObjectPath(sessionPath))
                   : sdbus::Struct<std::string, sdbus::ObjectPath>("", sdbus::ObjectPath("/"));
    });
    user_->finishRegistration();
}

void MockLogind::serveSession() {
    session_ = sdbus::createObject(bus_.connection(), sessionPath);
    session_->registerProperty("LockedHint").onInterface(sessionInterface).withGetter([this] {
        return locked_.load();
    });
    session_->registerProperty("Active").onInterface(sessionInterface).withGetter([this] { return active_.load(); });
    session_->registerProperty("Timestamp").onInterface(sessionInterface).withGetter([this] {
        return script_.timestamp;
    });
    session_->finishRegistration();
}

void MockLogind::prepareForSleep(bool sleeping) {
    manager_->emitSignal("PrepareForSleep").onInterface(managerInterface).withArguments(sleeping);
}

void MockLogind::prepareForShutdown(bool isNear) {
    manager_->emitSignal("PrepareForShutdown").onInterface(managerInterface).withArguments(isNear);
}

void MockLogind::requestLock() {
    session_->emitSignal("Lock").onInterface(sessionInterface);
}

void MockLogind::requestUnlock() {
    session_->emitSignal("Unlock").onInterface(sessionInterface);
}

void MockLogind::setLockedHint(bool locked) {
    locked_ = locked;
    session_->emitPropertiesChangedSignal(sessionInterface, {"LockedHint"});
}

void MockLogind::setActive(bool active) {
    active_ = active;
    session_->emitPropertiesChangedSignal(sessionInterface, {"Active"});
}

void MockLogind::removeSession() {
    manager_->emitSignal("SessionRemoved")
        .onInterface(managerInterface)
        .withArguments(std::string("c7"), sdbus::ObjectPath(sessionPath));
}

int MockLogind::delayLocksHeld() {
    const std::lock_guard guard(mutex_);
    return static_cast<int>(std::count_if(lockPipes_.begin(), lockPipes_.end(), [](int pipe) {
        pollfd end{pipe, POLLIN, 0};
        return poll(&end, 1, 0) == 0; // the last holder's closing is told as a hang-up
    }));
}

std::vector<std::string> MockLogind::inhibitions() {
    const std::lock_guard guard(mutex_);
    return inhibitions_;
}

} // namespace kestrio
