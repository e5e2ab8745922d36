#include "Kestrio/Platform/Linux/PulseTraces.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <map>

namespace kestrio {
namespace {

TEST(PulseTraces, aStreamIsTracedByAllThatItTells) {
    const TemporaryFolder processes;
    processes.write("70/cmdline", std::string("/opt/player/player\0--flag\0", 26));
    std::filesystem::create_symlink("/opt/player/player", processes.path() / "70" / "exe");
    processes.write("71/cmdline", std::string("/usr/bin/python3\0/usr/bin/podcasts\0", 35));
    std::filesystem::create_symlink("/usr/bin/python3.11", processes.path() / "71" / "exe");
    using Properties = std::map<std::string, std::string>;
    using Trace = std::optional<ApplicationTrace>;
    const struct {
        const char* what;
        Properties properties;
        Trace trace;
    } rows[] = {
        {"nothing", {}, std::nullopt},
        {"a process alone", {{"application.process.id", "70"}}, Trace(ApplicationTrace{70})},
        {"a process and its program",
         {{"application.process.id", "70"}, {"application.process.binary", "player"}},
         Trace(ApplicationTrace{70, "player"})},
        {"the number of another process, as out of a sandbox",
         {{"application.process.id", "70"}, {"application.process.binary", "music"}},
         Trace(ApplicationTrace{std::nullopt, "music"})},
        {"the number of no process here",
         {{"application.process.id", "2"}, {"application.process.binary", "music"}},
         Trace(ApplicationTrace{std::nullopt, "music"})},
        {"the program that an interpreter runs",
         {{"application.process.id", "71"}, {"application.process.binary", "python3.11"}},
         Trace(ApplicationTrace{71, "python3.11"})},
        {"an identifier before a name",
         {{"application.id", "org.example.Music"}, {"application.name", "Music"}},
         Trace(ApplicationTrace{std::nullopt, "org.example.Music"})},
        {"a sandbox's word before an identifier",
         {{"application.id", "fake"}, {"pipewire.access.portal.app_id", "org.example.Music"}},
         Trace(ApplicationTrace{std::nullopt, "org.example.Music"})},
        {"empty texts",
         {{"application.id", ""}, {"application.name", "Music"}},
         Trace(ApplicationTrace{std::nullopt, "Music"})},
        {"this machine",
         {{"application.process.id", "70"}, {"application.process.host", "here"}},
         Trace(ApplicationTrace{70})},
        {"another machine", {{"application.process.id", "70"}, {"application.process.host", "there"}}, std::nullopt},
        {"no number", {{"application.process.id", "seven"}}, std::nullopt},
        {"half a number", {{"application.process.id", "70x"}}, std::nullopt},
        {"a negative number", {{"application.process.id", "-70"}}, std::nullopt},
        {"too large a number", {{"application.process.id", "99999999999"}}, std::nullopt},
    };
    for (const auto& row : rows) {
        const StreamProperties properties = [&](const char* name) {
            const auto found = row.properties.find(name);
            return found == row.properties.end() ? std::nullopt : std::optional(found->second);
        };
        EXPECT_EQ(traceOfStream(properties, "here", processes.path()), row.trace) << row.what;
    }
}

} // namespace
} // namespace kestrio
