// Whose session this is and on which machine, by the names that terminals show.
#pragma once

#include "Kestrio/Platform/Linux/Locations.h"

#include <string>

namespace kestrio {

/// Empty texts where the system does not say.
struct Account {
    std::string name; // for signing in
    std::string home; // the folder's path
    std::string host; // the machine's name

    friend bool operator==(const Account&, const Account&) = default;
};

/// Any thread. What the environment says comes first; the account's entry may take a question to a directory service.
Account currentAccount(const Environment& environment);

} // namespace kestrio
