#include "Kestrio/Platform/Linux/FileKeyValueStore.h"

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/Files.h"
#include "Kestrio/Base/Log.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/Descriptor.h"
#include "Kestrio/Platform/Linux/SafeFiles.h"
#include "Kestrio/Platform/Linux/SettingsDocument.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fmt/format.h>
#include <mutex>
#include <set>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <thread>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// A write of a few kilobytes takes milliseconds; whoever holds the lock for longer is stopped or on a dead disk.
constexpr Seconds lockPatience{3};

/// The kernel stamps files with the time of its last tick, 10 ms at most. A file that was written so shortly before it
/// was read may be written again without its stamp changing, so its stamp proves nothing.
constexpr double stampGrain = 0.05;

/// Editors that write in place empty the file first. What does not parse is damage only when nobody touched it for so
/// long; until then somebody is most likely in the middle of writing it.
constexpr double restingTime = 2.0;

/// How long a `set` waits for such a writer: until what they left has been at rest, and a little longer.
constexpr Seconds writerPatience{2.5};

/// More links in a row than this are a circle.
constexpr int mostLinks = 40;

/// What tells one state of the file from another.
struct Stamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    time_t seconds = 0;
    long nanoseconds = 0;

    friend bool operator==(const Stamp&, const Stamp&) = default;
};

Stamp stampOf(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

double modified(const Stamp& stamp) {
    return static_cast<double>(stamp.seconds) + static_cast<double>(stamp.nanoseconds) * 1e-9;
}

double age(const Stamp& stamp) {
    // As a distance, so that a clock that was set back does no harm.
    return std::abs(SystemClock().now().seconds() - modified(stamp));
}

/// What the path leads to. A settings file that is a link, as people who keep such files elsewhere have it, stays one.
fs::path behindLinks(fs::path path) {
    std::error_code error;
    for (int count = 0; count < mostLinks; ++count) {
        const auto target = fs::read_symlink(path, error);
        if (error)
            break;
        path = path.parent_path() / target;
    }
    return path;
}

struct Missing {};
struct Unreadable {
    std::string reason;
};
struct Damaged {
    Stamp stamp;
};
struct Loaded {
    SettingsDocument document;
    Stamp stamp;
};
using FileContent = std::variant<Missing, Unreadable, Damaged, Loaded>;

/// The whole file; absent, with `errno` set, when it cannot be read. Stops one byte after the largest size.
std::optional<std::string> readAll(int descriptor) {
    std::string text;
    std::array<char, 16384> buffer{};
    while (text.size() <= SettingsDocument::largestSize) {
        const auto count = ::read(descriptor, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            break;
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

FileContent readSettings(const fs::path& file) {
    // Without blocking: a pipe in the file's place must not hold us up.
    const Descriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor && errno == ENOENT)
        return Missing{};
    struct stat status {};
    if (!descriptor || fstat(descriptor.number(), &status) != 0)
        return Unreadable{std::strerror(errno)};
    if (!S_ISREG(status.st_mode))
        return Unreadable{"not a file"};
    const auto text = readAll(descriptor.number());
    if (!text)
        return Unreadable{std::strerror(errno)};
    auto document = SettingsDocument::parse(*text);
    if (!document)
        return Damaged{stampOf(status)};
    return Loaded{std::move(*document), stampOf(status)};
}

/// The name that a damaged file gets, by the local time; one that nobody has yet.
fs::path nameAside(const fs::path& file, Date now) {
    const auto seconds = static_cast<std::time_t>(now.seconds());
    std::tm local{};
    localtime_r(&seconds, &local);
    std::array<char, 32> time{};
    std::strftime(time.data(), time.size(), "%Y%m%d-%H%M%S", &local);
    const auto stem = fmt::format("{}.damaged-{}", file.stem().string(), time.data());
    auto name = file.parent_path() / (stem + file.extension().string());
    struct stat ignored {};
    for (int count = 2; lstat(name.c_str(), &ignored) == 0; ++count)
        name = file.parent_path() / fmt::format("{}-{}{}", stem, count, file.extension().string());
    return name;
}

/// The error's text, or an empty one when the file was put aside.
std::string putAside(const fs::path& file) {
    const auto damaged = behindLinks(file);
    const auto aside = nameAside(damaged, SystemClock().now());
    // RENAME_NOREPLACE would be the plain way, but not every file system knows it. The lock is held: only a person
    // could make that very name in between.
    if (rename(damaged.c_str(), aside.c_str()) != 0)
        return std::strerror(errno);
    logLine(fmt::format("Kestrio: the settings file was damaged; it is kept as {}", aside.string()));
    return {};
}

struct Observer {
    std::function<void(const std::string&)> receiver;
    std::atomic<bool> active = true;
};
using Observers = std::vector<std::shared_ptr<Observer>>;

/// What is to be told to whom, once the mutex is released.
struct Announcement {
    std::vector<std::string> keys;
    Observers observers;

    void tell() const {
        for (const auto& key : keys)
            for (const auto& observer : observers)
                if (observer->active)
                    observer->receiver(key);
    }
};

} // namespace

struct FileKeyValueStore::State : std::enable_shared_from_this<State> {
    State(fs::path path, LoopQueue* loop)
        : file(std::move(path)), lock(fs::path(file).replace_extension(".lock")), queue(loop) {}

    // What follows is called with the mutex held, and never calls an observer.

    /// Brings the copy up to the file, if that changed.
    void refresh();
    /// Reads the file anew. With the lock held by the caller a damaged file is put aside without asking for it.
    enum class Lock { free, held };
    void load(Lock held);
    void adopt(SettingsDocument content, std::optional<Stamp> state);
    void handleDamage(const Stamp& damage, Lock held);

    std::optional<SettingValue> effective(const std::string& key) const;
    std::map<std::string, SettingValue> effectiveValues() const;

    /// Notes which effective values are not the ones last told, for `announce`.
    void noteChanges();

    /// Takes what is to be told; with a queue it is on its way there already.
    std::optional<Announcement> takeAnnouncement();

    // Called without the mutex.

    bool write(const std::string& key, const std::optional<SettingValue>& value);
    bool writeLocked(const std::string& key, const std::optional<SettingValue>& value);
    void loadAtRest(std::unique_lock<std::mutex>& guard);
    void watchFolder();
    void folderChanged();

    const fs::path file;
    const fs::path lock;
    LoopQueue* const queue;

    std::mutex mutex; // guards all below; never held while an observer runs or the lock file is waited for
    SettingsDocument document;
    std::optional<Stamp> stamp;     // of the file as it is in `document`; absent when there was none, or to read again
    std::optional<Stamp> leftAlone; // a damaged file that could not be put aside
    std::string unreadable;         // why the file cannot be read at present
    bool beingWritten = false;      // the file makes no sense, and was touched a moment ago
    std::map<std::string, SettingValue> defaults;
    std::map<std::string, SettingValue> told;
    std::set<std::string> changed;
    Observers observers;

    std::mutex watchMutex; // guards both below
    Descriptor notices;
    Subscription watch; // after the descriptor, so that it goes first
};

void FileKeyValueStore::State::refresh() {
    struct stat status {};
    if (stat(file.c_str(), &status) != 0 && errno == ENOENT) {
        unreadable.clear();
        leftAlone.reset();
        beingWritten = false;
        if (stamp || document != SettingsDocument())
            adopt({}, std::nullopt);
        return;
    }
    const auto present = stampOf(status);
    if (unreadable.empty() && (stamp == present || leftAlone == present))
        return;
    load(Lock::free);
}

void FileKeyValueStore::State::load(Lock held) {
    const auto begun = SystemClock().now().seconds();
    auto content = readSettings(file);
    unreadable.clear();
    leftAlone.reset();
    beingWritten = false;
    if (std::holds_alternative<Missing>(content)) {
        adopt({}, std::nullopt);
    } else if (const auto* failure = std::get_if<Unreadable>(&content)) {
        // What is known stays in force, and the next read tries again.
        unreadable = failure->reason;
        stamp.reset();
    } else if (const auto* damage = std::get_if<Damaged>(&content); damage && age(damage->stamp) < restingTime) {
        // What is known stays in force here too.
        beingWritten = true;
        stamp.reset();
    } else if (damage) {
        handleDamage(damage->stamp, held);
    } else if (auto* loaded = std::get_if<Loaded>(&content)) {
        const double age = begun - modified(loaded->stamp);
        const bool settled = age > stampGrain || age < -stampGrain;
        adopt(std::move(loaded->document), settled ? std::optional(loaded->stamp) : std::nullopt);
    }
}

void FileKeyValueStore::State::adopt(SettingsDocument content, std::optional<Stamp> state) {
    stamp = state;
    if (content == document)
        return;
    document = std::move(content);
    noteChanges();
}

void FileKeyValueStore::State::handleDamage(const Stamp& damage, Lock held) {
    if (held == Lock::free) {
        // Not waiting: whoever holds the lock is about to see to it. Until then everything reads as its default.
        const auto locked = lockFile(lock, Seconds(0));
        if (locked.descriptor) {
            load(Lock::held); // it may be whole again
            return;
        }
        adopt({}, std::nullopt);
        if (locked.error != std::errc::timed_out) {
            leftAlone = damage;
            logLine(fmt::format("Kestrio: the settings file is damaged and can't be put aside: {}",
                                locked.error.message()));
        }
        return;
    }
    const auto failure = putAside(file);
    adopt({}, std::nullopt);
    if (failure.empty())
        return;
    leftAlone = damage;
    logLine(fmt::format("Kestrio: the settings file is damaged and can't be put aside: {}", failure));
}

std::optional<SettingValue> FileKeyValueStore::State::effective(const std::string& key) const {
    if (auto stored = document.value(key))
        return stored;
    const auto found = defaults.find(key);
    return found == defaults.end() ? std::nullopt : std::optional(found->second);
}

std::map<std::string, SettingValue> FileKeyValueStore::State::effectiveValues() const {
    auto values = document.values();
    values.insert(defaults.begin(), defaults.end());
    return values;
}

void FileKeyValueStore::State::noteChanges() {
    auto values = effectiveValues();
    for (const auto& [key, value] : values) {
        const auto before = told.find(key);
        if (before == told.end() || before->second != value)
            changed.insert(key);
    }
    for (const auto& [key, value] : told)
        if (!values.contains(key))
            changed.insert(key);
    told = std::move(values);
}

std::optional<Announcement> FileKeyValueStore::State::takeAnnouncement() {
    std::vector<std::string> keys(changed.begin(), changed.end());
    changed.clear();
    if (keys.empty() || observers.empty())
        return std::nullopt;
    Announcement announcement{std::move(keys), observers};
    if (!queue)
        return announcement;
    queue->async([announcement = std::move(announcement)] { announcement.tell(); });
    return std::nullopt;
}

bool FileKeyValueStore::State::write(const std::string& key, const std::optional<SettingValue>& value) {
    if (const auto error = makePrivateFolder(file.parent_path())) {
        logLine(fmt::format("Kestrio: couldn't make the folder of the settings: {}", error.message()));
        return false;
    }
    const auto locked = lockFile(lock, lockPatience);
    if (!locked.descriptor) {
        logLine(locked.error == std::errc::timed_out
                    ? std::string("Kestrio: couldn't save a setting: the file stays locked by another process")
                    : fmt::format("Kestrio: couldn't save a setting: {}", locked.error.message()));
        return false;
    }
    return writeLocked(key, value);
}

bool FileKeyValueStore::State::writeLocked(const std::string& key, const std::optional<SettingValue>& value) {
    const auto target = behindLinks(file);
    removeLeftovers(target);
    std::unique_lock guard(mutex);
    loadAtRest(guard);
    if (beingWritten) {
        logLine("Kestrio: couldn't save a setting: another program is writing the settings file");
        return false;
    }
    if (!unreadable.empty() || leftAlone) {
        logLine(fmt::format("Kestrio: couldn't save a setting: the settings file can't be read{}{}",
                            unreadable.empty() ? "" : ": ", unreadable));
        return false;
    }
    auto next = document;
    if (!next.set(key, value)) {
        logLine("Kestrio: couldn't save a setting: its text isn't valid UTF-8");
        return false;
    }
    if (next == document)
        return true;
    const auto text = next.text();
    if (text.size() > SettingsDocument::largestSize) {
        logLine("Kestrio: couldn't save a setting: the settings file would become too large");
        return false;
    }
    if (const auto error = replaceFile(target, text, 0600)) {
        logLine(fmt::format("Kestrio: couldn't save a setting: {}", error.message()));
        return false;
    }
    adopt(std::move(next), std::nullopt);
    return true;
}

/// Reads the file anew, and again and again while somebody is writing it. The mutex is held but for the waiting.
void FileKeyValueStore::State::loadAtRest(std::unique_lock<std::mutex>& guard) {
    const SystemClock clock;
    const auto deadline = clock.uptime() + writerPatience;
    load(Lock::held);
    while (beingWritten && clock.uptime() < deadline) {
        guard.unlock();
        std::this_thread::sleep_for(std::chrono::milliseconds(10)); // no notice tells that somebody stopped writing
        guard.lock();
        load(Lock::held);
    }
}

void FileKeyValueStore::State::watchFolder() {
    if (!queue)
        return;
    const std::lock_guard guard(watchMutex);
    if (watch.isActive())
        return;
    Descriptor opened(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    // Not when a file is made: it is empty then, and whoever made it is about to write and close it.
    constexpr std::uint32_t events = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_ATTRIB |
                                     IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
    if (!opened || inotify_add_watch(opened.number(), file.parent_path().c_str(), events) < 0)
        return; // reads are right without it
    notices = std::move(opened);
    watch = queue->watch(notices.number(), [weak = weak_from_this()] {
        if (const auto state = weak.lock())
            state->folderChanged();
    });
}

void FileKeyValueStore::State::folderChanged() {
    bool concerned = false;
    bool gone = false;
    {
        const std::lock_guard guard(watchMutex);
        alignas(inotify_event) std::array<char, 4096> buffer{};
        const auto name = file.filename().string();
        while (true) {
            const auto count = ::read(notices.number(), buffer.data(), buffer.size());
            if (count <= 0)
                break;
            for (std::size_t at = 0; at < static_cast<std::size_t>(count);) {
                inotify_event event{};
                std::memcpy(&event, buffer.data() + at, sizeof event);
                const char* about = buffer.data() + at + sizeof event;
                gone = gone || (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT)) != 0;
                concerned = concerned || (event.mask & IN_Q_OVERFLOW) != 0 || (event.len > 0 && name == about);
                at += sizeof event + event.len;
            }
        }
        if (gone) {
            // The next `set` makes the folder again and watches it; until then reading finds what there is.
            watch.cancel();
            notices.close();
        }
    }
    if (!concerned && !gone)
        return;
    const std::lock_guard guard(mutex);
    refresh();
    takeAnnouncement();
}

FileKeyValueStore::FileKeyValueStore(fs::path file, LoopQueue* queue)
    : state_(std::make_shared<State>(std::move(file), queue)) {
    if (queue && !makePrivateFolder(state_->file.parent_path()))
        state_->watchFolder();
    const std::lock_guard guard(state_->mutex);
    state_->refresh();
    state_->changed.clear();
}

FileKeyValueStore::~FileKeyValueStore() {
    const std::lock_guard guard(state_->watchMutex);
    state_->watch.cancel();
}

std::optional<SettingValue> FileKeyValueStore::value(const std::string& key) const {
    const std::lock_guard guard(state_->mutex);
    state_->refresh();
    if (state_->queue)
        state_->takeAnnouncement();
    return state_->effective(key);
}

bool FileKeyValueStore::set(const std::string& key, std::optional<SettingValue> value) {
    const bool kept = state_->write(key, value);
    std::optional<Announcement> announcement;
    {
        const std::lock_guard guard(state_->mutex);
        // Without a queue observers hear of this very key and nothing else.
        if (!state_->queue)
            std::erase_if(state_->changed, [&](const std::string& changed) { return !kept || changed != key; });
        announcement = state_->takeAnnouncement();
    }
    state_->watchFolder();
    if (announcement)
        announcement->tell();
    return kept;
}

std::vector<std::string> FileKeyValueStore::storedKeys() const {
    const std::lock_guard guard(state_->mutex);
    state_->refresh();
    if (state_->queue)
        state_->takeAnnouncement();
    return state_->document.keys();
}

void FileKeyValueStore::registerDefaults(std::map<std::string, SettingValue> defaults) {
    std::optional<Announcement> announcement;
    {
        const std::lock_guard guard(state_->mutex);
        state_->refresh();
        if (!state_->queue)
            state_->changed.clear(); // what other processes changed is nobody's news here
        for (auto& [key, value] : defaults)
            state_->defaults.insert_or_assign(key, std::move(value));
        state_->noteChanges();
        announcement = state_->takeAnnouncement();
    }
    if (announcement)
        announcement->tell();
}

Subscription FileKeyValueStore::observe(std::function<void(const std::string& key)> receiver) {
    auto observer = std::make_shared<Observer>();
    observer->receiver = std::move(receiver);
    const std::lock_guard guard(state_->mutex);
    state_->refresh();
    state_->takeAnnouncement(); // what changed before is for the earlier observers
    state_->changed.clear();
    state_->observers.push_back(observer);
    return Subscription([observer, weak = std::weak_ptr(state_)] {
        observer->active = false;
        if (const auto state = weak.lock()) {
            const std::lock_guard guarding(state->mutex);
            std::erase(state->observers, observer);
        }
    });
}

} // namespace kestrio
