// What the command line knows about the terminal it writes to.
#pragma once

#include "Programs/CommandLine/SessionTable.h"

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace kestrio {

/// Colour and width of standard output: plain and 100 columns wide where it is no terminal, without colour where
/// `NO_COLOR` is set or the terminal is dumb.
TableStyle outputStyle();

/// Writes to standard output. False when nobody reads any more.
bool tryToPrint(const std::string& text);

/// The same, and ends the program quietly when nobody reads any more.
void print(const std::string& text);

/// Over several lines. Bytes that are no text are shown as U+FFFD.
void printJSON(const nlohmann::ordered_json& json);

/// Writes one line for people to standard error, after the program's name.
void complain(const std::string& text);

} // namespace kestrio
