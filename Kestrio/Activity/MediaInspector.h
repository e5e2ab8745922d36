// Which applications make sound, record it, or keep the display or the machine awake, by their bundle identifiers.
//
// Belongs to the queue of the seams that it was made for, and blocks no longer than they do. Whatever cannot be read
// counts as nothing.
#pragma once

#include "Kestrio/Platform/AudioUse.h"
#include "Kestrio/Platform/SleepInhibitors.h"

#include <functional>
#include <optional>
#include <set>
#include <string>

namespace kestrio {

class MediaInspector {
public:
    /// The assertions by which a player keeps the screen on while it plays.
    static const std::set<std::string>& displayAssertionTypes();

    /// The bundle identifier of the application that owns what was traced: a browser's, where a helper process of it
    /// makes the sound. Absent when no application does.
    using Owner = std::function<std::optional<std::string>(const ApplicationTrace&)>;

    /// `ownBundleID` is left out of every answer, as this program may hold an assertion itself; it may be empty. The
    /// seams must outlive the inspector.
    MediaInspector(AudioUse& audio, SleepInhibitors& inhibitors, Owner owner, std::string ownBundleID);

    std::set<std::string> appsPlayingAudio();
    std::set<std::string> appsRecordingAudio();

    /// The applications that hold an assertion of one of the types.
    std::set<std::string> apps(const std::set<std::string>& holding);

private:
    std::set<std::string> owners(const std::set<ApplicationTrace>& traces) const;

    AudioUse& audio_;
    SleepInhibitors& inhibitors_;
    const Owner owner_;
    const std::string ownBundleID_;
};

} // namespace kestrio
