// The windows' process on the session bus, so that whoever wants a window shown finds the one that runs.
//
//   ShowDashboard(s page)                      a page by its raw text, or empty: the one that was open last
//   ShowPanel(s kind, b atPoint, i x, i y)     "today" or "system"; x and y count where `atPoint` says so
//   ShowSettings(s tab)                        a tab by its raw text, or empty: the one that was open last
//   ProvideActivationToken(s token)            what lets the window asked for next come to the front
//   Quit()                                     closes every window, and with them the process
//
// The name is also the guard against a second process: who does not get it hands its request over (`WindowClient`).
// A thread of its own answers the bus at once, however busy the windows are. Made and dropped on the queue that the
// receiver runs on.
#pragma once

#include "Kestrio/Base/Queue.h"
#include "Kestrio/Link/WindowRequest.h"

#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace sdbus {
class IConnection;
class IObject;
} // namespace sdbus

namespace kestrio {

class WindowService {
public:
    /// Shows a window. `activationToken` is the desktop's leave to take the front, empty where there is none.
    using Receiver = std::function<void(const WindowRequest& request, const std::string& activationToken)>;

    /// Null where there is no bus, or another process has the name. `receiver` and `quit` are called on the queue,
    /// which must outlive the service.
    static std::unique_ptr<WindowService> offer(
        const std::string& busAddress, Queue& queue, Receiver receiver, std::function<void()> quit = [] {});

    /// Gives the name back; requests that are still under way to the receiver are dropped.
    ~WindowService();
    WindowService(const WindowService&) = delete;
    WindowService& operator=(const WindowService&) = delete;

private:
    struct Receivers {
        Receiver show;
        std::function<void()> quit;
    };

    WindowService(std::unique_ptr<sdbus::IConnection> connection, Queue& queue, Receivers receivers);

    void registerObject();
    void handOver(WindowRequest request);
    void later(std::function<void(const Receivers&)> work);

    std::unique_ptr<sdbus::IConnection> connection_;
    Queue& queue_;
    const std::shared_ptr<const Receivers> receivers_; // requests on their way hold it weakly
    std::string activationToken_;                      // for the next request; on the thread
    std::unique_ptr<sdbus::IObject> object_;
    std::thread thread_;
};

} // namespace kestrio
