// The person's categories and project rules as the settings keep them, for the whole program: one of each, which follow
// the settings whichever process changes them.
//
// Made and dropped on the queue on which the store tells of changes; observers of both hear on that queue.
#pragma once

#include "Kestrio/Classification/Categorizer.h"
#include "Kestrio/Classification/ProjectDetection.h"
#include "Kestrio/Platform/KeyValueStore.h"

namespace kestrio {

class ClassificationSettings {
public:
    /// The store must outlive this, and every snapshot's hint what it captured.
    explicit ClassificationSettings(KeyValueStore& store, Categorizer::HostHint hostHint = {});
    ClassificationSettings(const ClassificationSettings&) = delete;
    ClassificationSettings& operator=(const ClassificationSettings&) = delete;

    Categorizer& categorizer() { return categorizer_; }
    ProjectRules& projectRules() { return projectRules_; }

private:
    void reload(const std::string& key);

    Categorizer categorizer_;
    ProjectRules projectRules_;
    Subscription watch_;
};

} // namespace kestrio
