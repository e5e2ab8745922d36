// How this start of the program came about, and whether it is a program that stays. Pure functions.
#pragma once

#include "Kestrio/Base/Date.h"

#include <filesystem>
#include <optional>

namespace kestrio {

/// A program that starts this soon after the session did counts as started by the login, not by a person.
inline constexpr Seconds loginGrace{180.0};

/// `saidByLoginItem`: the login item's own mark was on the command line. Without it the start of the session decides,
/// and where that is unknown the start of the machine.
bool isLoginLaunch(bool saidByLoginItem, std::optional<Date> sessionStart, Date now, Uptime uptime);

/// Whether the program lies where programs are installed, for everybody or for this person, rather than in a build
/// folder, a download or on a medium. Only such a one makes itself start at login.
bool isInstalled(const std::filesystem::path& program, const std::filesystem::path& home);

} // namespace kestrio
