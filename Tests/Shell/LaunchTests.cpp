#include "Kestrio/Shell/Launch.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

constexpr Date now{1'700'000'000};

TEST(Launch, isTheLoginsForThreeMinutesAfterTheSessionsStart) {
    struct Row {
        const char* what;
        bool mark;
        std::optional<double> sessionAge;
        double uptime;
        bool expected;
    };
    const Row rows[] = {
        {"at once", false, 0.0, 9999, true},
        {"just within the grace", false, 179.9, 9999, true},
        {"at its end", false, 180.0, 9999, false},
        {"by hand, four minutes after login", false, 240.0, 9999, false},
        {"by hand, soon after the machine's start but long after login", false, 240.0, 300, false},
        {"the login item's mark, whenever", true, 100'000.0, 100'000, true},
        {"the mark without a session", true, std::nullopt, 100'000, true},
        {"no session start, the machine just started", false, std::nullopt, 179.9, true},
        {"no session start, the machine runs", false, std::nullopt, 180, false},
        {"a session that seems to start in the future", false, -10.0, 9999, true},
    };
    for (const auto& row : rows) {
        const auto start = row.sessionAge ? std::optional(now - Seconds(*row.sessionAge)) : std::nullopt;
        EXPECT_EQ(isLoginLaunch(row.mark, start, now, Uptime(row.uptime)), row.expected) << row.what;
    }
}

TEST(Launch, tellsInstalledProgramsFromCopiesOnTrial) {
    struct Row {
        const char* program;
        const char* home;
        bool expected;
    };
    const Row rows[] = {
        {"/usr/bin/kestrio", "/home/ada", true},
        {"/usr/local/bin/kestrio", "/home/ada", true},
        {"/usr/libexec/kestrio/kestrio", "", true},
        {"/opt/kestrio/bin/kestrio", "/home/ada", true},
        {"/home/ada/.local/bin/kestrio", "/home/ada", true},
        {"/home/ada/.local/bin/kestrio", "/home/ada/", true},
        {"/home/ada/.local/bin/kestrio", "/home/./ada", true},
        {"/home/ada/.local/lib/kestrio/kestrio", "/home/ada", true},
        {"/home/ada/.local/opt/kestrio/kestrio", "/home/ada", true},
        {"/home/ada/.local/bin/kestrio", "/home/bob", false},
        {"/home/ada/.local/share/Trash/files/kestrio", "/home/ada", false},
        {"/home/ada/src/kestrio/build/release/bin/kestrio", "/home/ada", false},
        {"/home/ada/Downloads/kestrio", "/home/ada", false},
        {"/home/ada/Desktop/usr/bin/kestrio", "/home/ada", false},
        {"/media/ada/STICK/kestrio", "/home/ada", false},
        {"/run/media/ada/STICK/usr/bin/kestrio", "/home/ada", false},
        {"/Volumes/Kestrio/kestrio", "/home/ada", false},
        {"/tmp/.mount_abc/usr/bin/kestrio", "/home/ada", false},
        {"/usrlocal/bin/kestrio", "/home/ada", false},
        {"/optional/kestrio", "/home/ada", false},
        {"/usr/../home/ada/Downloads/kestrio", "/home/ada", false},
        {"/home/ada/../../usr/bin/kestrio", "/home/ada", true},
        {"/.local/bin/kestrio", "/", false},
        {"/.local/bin/kestrio", "/.", false},
        {"/.local/bin/kestrio", "", false},
        {"bin/kestrio", "bin", false},
        {".local/bin/kestrio", "", false},
        {"", "/home/ada", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(isInstalled(row.program, row.home), row.expected) << row.program << " of " << row.home;
}

} // namespace
} // namespace kestrio
