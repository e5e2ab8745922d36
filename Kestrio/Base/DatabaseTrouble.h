// Why a database cannot be read. Plain values.
#pragma once

namespace kestrio {

enum class DatabaseTrouble {
    missing,
    forbidden, // to this person
    locked,    // by another program, for longer than a statement waits
    damaged,
    unreadable, // for any other reason: it is of another version, the drive fails
};

} // namespace kestrio
