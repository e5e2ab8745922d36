// What every command starts from: the folders, the settings, and the agent if one runs.
#pragma once

#include "Kestrio/Link/BackgroundClient.h"
#include "Kestrio/Platform/Linux/FileKeyValueStore.h"
#include "Kestrio/Platform/Linux/Locations.h"

#include <memory>

namespace kestrio {

/// The person's folders; ends the program with a clear line where there are none.
Locations placesOrExit();

/// The folder that the agent keeps its data in. Moves and makes nothing.
std::filesystem::path dataFolder(const Locations& places);

/// The settings with what is registered beneath them. Reading makes no file.
std::unique_ptr<FileKeyValueStore> openSettings(const Locations& places);

/// Null, without a word, when no agent runs in this session, or it keeps its data elsewhere than `places` say.
std::unique_ptr<BackgroundClient> runningAgent(const Locations& places);

} // namespace kestrio
