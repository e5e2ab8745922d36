// The speed test of the internal drive that a person starts by hand.
//
// `run` blocks for as long as the test takes, seconds on a fast drive and minutes on a slow one: never on the main
// queue. The file that it writes is gone on every path out, also when the program is killed in the middle.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/Disks.h"
#include "Kestrio/Platform/KeyValueStore.h"

#include <optional>
#include <string>
#include <string_view>

namespace kestrio {

class SSDSpeedTest {
public:
    struct Result {
        double readBytesPerSecond = 0;
        double writeBytesPerSecond = 0;
        Date date; // of the test

        friend bool operator==(const Result&, const Result&) = default;
    };

    static constexpr const char* settingKey = "ssdSpeedTest";
    static constexpr std::size_t usualMegabytes = 256;

    /// Writes and reads so many megabytes, in whole blocks of 4 and at least one. Absent when the drive did not take or
    /// give back everything, and when there is no drive to write on.
    static std::optional<Result> run(Disks& disks, const Clock& clock, std::size_t megabytes);

    /// The last result that was kept. Absent when there is none that can be read.
    static std::optional<Result> saved(const KeyValueStore& store);
    /// An absent result removes the one that is kept.
    static void save(KeyValueStore& store, const std::optional<Result>& result);

    /// As it is kept: an object with the field names as keys, the date in seconds since 2001-01-01 00:00 UTC.
    static std::string encoded(const Result& result);
    static std::optional<Result> decoded(std::string_view json);
};

} // namespace kestrio
