// How the agent, and the process with the windows, are found on the session bus.
#pragma once

namespace kestrio::busNames {

/// The well-known name; also the guard against a second agent of the same session.
inline constexpr auto service = "dev.haldorvinter.Kestrio";
inline constexpr auto object = "/dev/haldorvinter/Kestrio";
inline constexpr auto interface = "dev.haldorvinter.Kestrio";

/// The name of the process with the windows; also the guard against a second one.
inline constexpr auto windowService = "dev.haldorvinter.Kestrio.Window";
inline constexpr auto windowObject = "/dev/haldorvinter/Kestrio/Window";
inline constexpr auto windowInterface = "dev.haldorvinter.Kestrio.Window";
inline constexpr auto optimizerObject = "/dev/haldorvinter/Kestrio/Optimizer";
inline constexpr auto optimizerInterface = "dev.haldorvinter.Kestrio.Optimizer";

inline constexpr auto errorPrefix = "dev.haldorvinter.Kestrio.Error.";
inline constexpr auto errorFailed = "dev.haldorvinter.Kestrio.Error.Failed";
inline constexpr auto errorInvalid = "dev.haldorvinter.Kestrio.Error.InvalidArgument";

} // namespace kestrio::busNames
