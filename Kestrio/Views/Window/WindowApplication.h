// The view framework around the windows: made first of all in a program with windows, on its main thread, and dropped
// last.
#pragma once

#include "Kestrio/Views/Window/QtQueue.h"

#include <memory>

class QGuiApplication;

namespace kestrio {

class WindowApplication {
public:
    /// Draws without the graphics card unless the environment says otherwise: these windows need less memory and start
    /// sooner that way. The arguments stay the caller's for as long as this lives.
    WindowApplication(int& count, char** arguments);
    ~WindowApplication();

    /// The main queue; its work runs while `run` does.
    Queue& queue() { return *queue_; }

    /// Until the last window is closed. Returns the exit status.
    int run();

    /// Closes all windows, and so ends `run`. Callable in the queue's work.
    void quit();

private:
    std::unique_ptr<QGuiApplication> application_;
    std::unique_ptr<QtQueue> queue_;
};

} // namespace kestrio
