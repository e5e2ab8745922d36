// A message bus of a test's own: a real daemon on a socket in a temporary folder, with no services to start. It ends
// with this value, and with the test program however that ends.
#pragma once

#include "Tests/Support/TemporaryFolder.h"

#include <string>
#include <sys/types.h>

namespace kestrio {

class PrivateBus {
public:
    /// Returns when the bus takes connections; throws when there is no daemon.
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const std::string& address() const { return address_; }

    /// Ends the daemon without a word, as a crash does.
    void kill();

    /// Stops the daemon where it is, so that it answers nobody; or lets it go on.
    void freeze();
    void thaw();

private:
    TemporaryFolder folder_;
    std::string address_;
    pid_t daemon_ = 0;
};

} // namespace kestrio
