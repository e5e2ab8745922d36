// How a long piece of work tells how far it is, and hears that nobody wants it any more.
#pragma once

#include <functional>
#include <stop_token>

namespace kestrio {

struct LongWork {
    /// Called now and then, on the thread that works, with the share that is done: from 0 to 1, never less than before.
    std::function<void(double share)> progress = [](double) {};
    /// Looked at often. Work that is stopped leaves everything as it was.
    std::stop_token stop = {};
};

} // namespace kestrio
