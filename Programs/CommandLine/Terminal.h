// What the command line knows about the terminal it writes to.
#pragma once

#include "Programs/CommandLine/SessionTable.h"

#include <string>

namespace kestrio {

/// Colour and width of standard output: plain and 100 columns wide where it is no terminal, without colour where
/// `NO_COLOR` is set or the terminal is dumb.
TableStyle outputStyle();

/// Writes to standard output. Ends the program quietly when nobody reads any more.
void print(const std::string& text);

/// Writes one line for people to standard error, after the program's name.
void complain(const std::string& text);

} // namespace kestrio
