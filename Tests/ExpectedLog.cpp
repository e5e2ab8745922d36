#include "Tests/ExpectedLog.h"

#include "Kestrio/Base/Log.h"

#include <gtest/gtest.h>
#include <mutex>
#include <optional>

namespace kestrio {
namespace {

std::mutex mutex;
std::optional<std::vector<std::string>> expected; // guarded by the mutex; present while an ExpectedLog lives

void receive(std::string_view line) {
    const std::lock_guard guard(mutex);
    if (expected)
        expected->emplace_back(line);
    else
        ADD_FAILURE() << "an unexpected line in the log: " << line;
}

} // namespace

void installLogGuard() {
    setLogReceiver(receive);
}

ExpectedLog::ExpectedLog() {
    const std::lock_guard guard(mutex);
    expected.emplace();
}

ExpectedLog::~ExpectedLog() {
    const std::lock_guard guard(mutex);
    expected.reset();
}

std::vector<std::string> ExpectedLog::lines() const {
    const std::lock_guard guard(mutex);
    return *expected;
}

} // namespace kestrio
