// A small made range of the log, and this computer as the exports of the tests know it.
#pragma once

#include "Kestrio/Resources/ResourceExporter.h"

namespace kestrio {

inline constexpr Date exampleStart{1'699'999'980}; // 2023-11-14, 22:13 UTC
inline constexpr std::uint64_t exampleMebibyte = 1 << 20;

inline ResourceExporter::Surroundings exampleSurroundings() {
    ResourceExporter::Surroundings surroundings;
    surroundings.mac = {"Example 9", 16, 4, 8, "Debian GNU/Linux 12"};
    surroundings.version = "1.2";
    surroundings.settings = {{"optimization_on", false}, {"log_days", 90}};
    surroundings.calendar = Calendar("en_GB", "Europe/Berlin");
    return surroundings;
}

inline SystemMinute exampleMinute(int index) {
    return {.minute = exampleStart + Seconds(60.0 * index),
            .cpu = 0.25,
            .cpuPeak = 0.5,
            .cpuPerformance = 0.125,
            .cpuEfficiency = 0.375,
            .memoryUsed = 8192 * exampleMebibyte,
            .memoryTotal = 16384 * exampleMebibyte,
            .compressed = 100 * exampleMebibyte,
            .swapUsed = 50 * exampleMebibyte,
            .swapIn = 3 * exampleMebibyte,
            .swapOut = 2 * exampleMebibyte,
            .pressure = 1,
            .thermal = 0,
            .lagMilliseconds = 12,
            .frontApp = "org.example.app",
            .ramRead = 1.5e9,
            .ramWrite = 0.5e9,
            .ramPeak = 3e9,
            .ssdRead = 10e6,
            .ssdWrite = 5e6,
            .ssdPeak = 90e6,
            .ssdWaitMicroseconds = 350,
            .activeSeconds = 40,
            .idleSeconds = 10,
            .awaySeconds = 6,
            .pausedSeconds = 4,
            .switches = 3,
            .appsOpen = 7,
            .processes = 300,
            .battery = 80,
            .onAC = true,
            .lowPower = false,
            .temperature = 51.25,
            .configLabel = "Optimization off",
            .frozenApps = 0,
            .efficientApps = 0,
            .frozenMemory = 0};
}

inline AppMinute exampleApp(int index) {
    return {.minute = exampleStart + Seconds(60.0 * index),
            .appID = "org.example.app",
            .name = "App, the \"great\" one",
            .cpu = 1.5,
            .cpuPeak = 2.25,
            .pcoreShare = 0.75,
            .memory = 300 * exampleMebibyte,
            .memoryPeak = 310 * exampleMebibyte,
            .resident = 200 * exampleMebibyte,
            .pageins = 17,
            .frontSeconds = 42.25,
            .state = 2,
            .processes = 5,
            .diskRead = exampleMebibyte,
            .diskWritten = 3 * exampleMebibyte / 2,
            .energyMillijoules = 123'456,
            .wakeups = 99};
}

inline SystemSecond exampleSecond(int index) {
    return {.at = exampleStart + Seconds(index),
            .cpu = 0.97,
            .cpuPerformance = 1,
            .cpuEfficiency = 0.5,
            .memoryUsed = 100 * exampleMebibyte,
            .compressed = 20 * exampleMebibyte,
            .swapUsed = 10 * exampleMebibyte,
            .pressure = 4,
            .thermal = 1,
            .ramRead = 2e9,
            .ramWrite = 1e9,
            .ssdRead = 300e6,
            .ssdWrite = 200e6,
            .swapInRate = 1.5e6,
            .swapOutRate = 2.5e6,
            .lagMilliseconds = 900 + index,
            .idleSeconds = 3,
            .state = 0,
            .frontApp = "org.example.app"};
}

} // namespace kestrio
