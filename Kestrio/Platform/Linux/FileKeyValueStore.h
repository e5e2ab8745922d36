// The person's settings in one JSON file that every process of the program shares.
//
// A read compares the file's `stat` with the copy in memory and reads the file again when it changed, so it is right in
// every process without a loop. A write takes the lock beside the file (`settings.lock`), reads again, changes one key
// and replaces the file whole; where it is a link, the file that the link leads to. A damaged file is kept aside, and
// everything then reads as its default; what cannot be read stays untouched. Text that makes no sense is damage only
// once nobody touched the file for 2 s: until then an editor may be writing it, and the values of before stay in force.
#pragma once

#include "Kestrio/Platform/KeyValueStore.h"

#include <filesystem>
#include <memory>

namespace kestrio {

class LoopQueue;

class FileKeyValueStore final : public KeyValueStore {
public:
    /// Nothing is written before the first `set`, but a damaged file is put aside at once. With a queue the file's
    /// folder is made and watched, and observers are called on that queue, whichever process made the change; the
    /// queue must outlive the store. Without one they hear only what this store itself sets, on the setting thread.
    explicit FileKeyValueStore(std::filesystem::path file, LoopQueue* queue = nullptr);
    ~FileKeyValueStore() override;

    std::optional<SettingValue> value(const std::string& key) const override;

    /// May wait 3 s when another process holds the lock, and 2.5 s when somebody is writing the file in place.
    bool set(const std::string& key, std::optional<SettingValue> value) override;

    /// Also the keys whose values this version does not understand.
    std::vector<std::string> storedKeys() const override;
    void registerDefaults(std::map<std::string, SettingValue> defaults) override;
    Subscription observe(std::function<void(const std::string& key)> receiver) override;

private:
    struct State;

    // Shared with the tokens and with work on the queue.
    std::shared_ptr<State> state_;
};

} // namespace kestrio
