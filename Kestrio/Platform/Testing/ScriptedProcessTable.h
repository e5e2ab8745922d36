// Processes in memory, for tests: each answers what the test last put into its fields. Belongs to the test's thread.
#pragma once

#include "Kestrio/Platform/ProcessTable.h"

#include <map>

namespace kestrio {

class ScriptedProcessTable final : public ProcessTable {
public:
    std::size_t processors = 4;

    /// By process number; those with counters are the ones that can be read.
    std::vector<pid_t> listed;
    std::map<pid_t, ProcessCounters> readings;
    std::map<pid_t, pid_t> responsibles;
    std::map<pid_t, std::string> paths;
    std::map<pid_t, ProcessApplication> applications;
    std::map<std::string, ApplicationBundle> bundles;

    /// How often the questions that a scanner should remember the answers of were asked, all together.
    int lookUps = 0;

    /// A process that is listed, can be read and runs the program.
    void run(pid_t process, std::string path, const ProcessCounters& counters) {
        listed.push_back(process);
        readings[process] = counters;
        paths[process] = std::move(path);
    }

    /// The process is gone from every answer.
    void end(pid_t process) {
        std::erase(listed, process);
        readings.erase(process);
        responsibles.erase(process);
        paths.erase(process);
        applications.erase(process);
    }

    std::size_t activeProcessorCount() override { return processors; }
    std::vector<pid_t> processes() override { return listed; }
    std::optional<ProcessCounters> counters(pid_t process) override { return find(readings, process); }
    std::optional<pid_t> responsible(pid_t process) override { return lookUp(responsibles, process); }
    std::optional<std::string> programPath(pid_t process) override { return lookUp(paths, process); }
    std::optional<ProcessApplication> application(pid_t process) override { return lookUp(applications, process); }
    std::optional<ApplicationBundle> bundle(const std::string& path) override { return lookUp(bundles, path); }

private:
    template <class Key, class Value>
    static std::optional<Value> find(const std::map<Key, Value>& values, const Key& key) {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    template <class Key, class Value>
    std::optional<Value> lookUp(const std::map<Key, Value>& values, const Key& key) {
        ++lookUps;
        return find(values, key);
    }
};

} // namespace kestrio
