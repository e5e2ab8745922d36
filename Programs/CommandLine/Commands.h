// The commands of `kestrioctl`. Each writes data to standard output and words about it to standard error, and returns
// the exit status: 0 done, 1 it could not be done, 2 wrong usage.
#pragma once

#include <optional>
#include <string>

namespace kestrio {

struct SessionsOptions {
    std::optional<std::string> from;
    std::optional<std::string> to;
    bool json = false;
};

int record();
int watch(bool json);
int status(bool json);
int sessions(const SessionsOptions& options);
/// Until somebody resumes, when no length is given.
int pause(const std::optional<std::string>& length);
int resume();
/// Shows the dashboard, with or without an agent: a page by its raw text, or the one that was open last.
int openDashboard(const std::optional<std::string>& page);
int listSettings(bool json);
int getSetting(const std::string& key);
int setSetting(const std::string& key, const std::string& value);
int resetSetting(const std::string& key);
int doctor(bool json);
int browsers(bool json);
/// Lets every installed browser start `kestrio-tabs` for the extension, or none any more.
int installNativeHosts();
int removeNativeHosts();

} // namespace kestrio
