// The settings for a program whose main queue is not the loop that watches the file: the file is watched on a worker
// queue, and observers hear on the main one.
#pragma once

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Base/Signal.h"
#include "Kestrio/Platform/Linux/FileKeyValueStore.h"

namespace kestrio {

class SettingsRelay final : public KeyValueStore {
public:
    /// Observing belongs to the main queue; all else may come from any thread. The queue must outlive the relay.
    SettingsRelay(std::filesystem::path file, Queue& main)
        : main_(main), store_(std::move(file), &watching_), watch_(store_.observe([this](const std::string& key) {
              main_.async([key, weak = std::weak_ptr(changed_)] {
                  if (const auto changed = weak.lock())
                      changed->emit(key);
              });
          })) {}

    std::optional<SettingValue> value(const std::string& key) const override { return store_.value(key); }
    bool set(const std::string& key, std::optional<SettingValue> value) override {
        return store_.set(key, std::move(value));
    }
    std::vector<std::string> storedKeys() const override { return store_.storedKeys(); }
    void registerDefaults(std::map<std::string, SettingValue> defaults) override {
        store_.registerDefaults(std::move(defaults));
    }
    Subscription observe(std::function<void(const std::string& key)> receiver) override {
        return changed_->subscribe(std::move(receiver));
    }

private:
    Queue& main_;
    std::shared_ptr<Signal<std::string>> changed_ = std::make_shared<Signal<std::string>>();
    WorkerQueue watching_{"Kestrio.settings"};
    FileKeyValueStore store_;
    Subscription watch_;
};

} // namespace kestrio
