// With real windows, of which one owns what is copied.
#include "Kestrio/Platform/Linux/StopRefusals.h"
#include "Kestrio/Platform/Linux/X11Selections.h"
#include "Tests/Platform/Linux/X11TestClient.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/VirtualDisplay.h"

#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

/// A process of its own that owns a selection, or none. It ends with this.
class Holder {
public:
    Holder(const std::string& display, std::string_view selection) : process_(fork()) {
        if (process_ != 0)
            return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const X11TestClient client(display);
        if (!selection.empty()) {
            xcb_set_selection_owner(client.xcb(), client.create("holder"), client.atom(selection), XCB_CURRENT_TIME);
            xcb_flush(client.xcb());
        }
        for (;;)
            pause();
    }
    ~Holder() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    pid_t process() const { return process_; }
    ProcessKey key() const { return {process_, 0}; }

private:
    pid_t process_;
};

/// A reader on a display, used in the work of its queue as the agent does.
class Reader {
public:
    explicit Reader(const std::string& display) {
        queue_.sync([&] { connection_ = std::make_unique<X11Connection>(queue_, clock_, display); });
    }
    ~Reader() {
        queue_.sync([this] { connection_.reset(); });
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    std::vector<pid_t> holders() {
        return queue_.sync([this] { return selectionHolders(*connection_); });
    }
    std::optional<std::string> beforeStop(const std::vector<ProcessKey>& processes) {
        return queue_.sync([&] { return StopRefusals(*connection_).beforeStop(processes); });
    }
    std::optional<std::string> whileStopped(ProcessKey main) {
        return queue_.sync([&] { return StopRefusals(*connection_).whileStopped(main); });
    }

private:
    const SystemClock clock_;
    WorkerQueue queue_{"x11"};
    std::unique_ptr<X11Connection> connection_;
};

using Processes = std::vector<pid_t>;

TEST(SelectionHolders, areThoseOfTheClipboardAndOfWhatIsSelected) {
    const VirtualDisplay display;
    Reader reader(display.name());
    EXPECT_TRUE(eventually([&] { return reader.holders().empty(); }));
    const Holder clipboard(display.name(), "CLIPBOARD");
    EXPECT_TRUE(eventually([&] { return reader.holders() == Processes{clipboard.process()}; }));
    const Holder selection(display.name(), "PRIMARY");
    EXPECT_TRUE(eventually([&] { return reader.holders() == Processes{selection.process(), clipboard.process()}; }));
    const Holder both(display.name(), "PRIMARY");
    EXPECT_TRUE(eventually([&] { return reader.holders() == Processes{both.process(), clipboard.process()}; }));
}

TEST(SelectionHolders, areNoneWhereNobodyAnswers) {
    VirtualDisplay display;
    Reader reader(display.name());
    const Holder clipboard(display.name(), "CLIPBOARD");
    ASSERT_TRUE(eventually([&] { return reader.holders().size() == 1; }));
    display.kill();
    EXPECT_TRUE(reader.holders().empty());
    EXPECT_TRUE(Reader("").holders().empty());
}

TEST(StopRefusals, letNothingHappenToWhoeverHoldsASelection) {
    const VirtualDisplay display;
    Reader reader(display.name());
    const Holder other(display.name(), "");
    const Holder holder(display.name(), "CLIPBOARD");
    ASSERT_TRUE(eventually([&] { return reader.holders().size() == 1; }));
    EXPECT_EQ(reader.beforeStop({other.key()}), std::nullopt);
    EXPECT_EQ(reader.beforeStop({other.key(), holder.key()}), "it holds what you copied or selected.")
        << "whichever of its processes it is";
    EXPECT_EQ(reader.whileStopped(holder.key()), std::nullopt) << "what is stopped takes none";
    EXPECT_EQ(reader.beforeStop({}), std::nullopt);
}

TEST(StopRefusals, letNothingHappenUnderADebugger) {
    const VirtualDisplay display;
    Reader reader(display.name());
    const Holder other(display.name(), "");
    const Holder traced(display.name(), "");
    ASSERT_EQ(ptrace(PTRACE_SEIZE, traced.process(), nullptr, nullptr), 0);
    EXPECT_EQ(reader.beforeStop({other.key(), traced.key()}), "a debugger is attached to it.");
    EXPECT_EQ(reader.whileStopped(traced.key()), "a debugger is attached to it.");
}

TEST(StopRefusals, letNothingHappenToWhoStartedUs) {
    Reader reader("");
    const auto refusal = reader.beforeStop({{getppid(), 0}});
    ASSERT_TRUE(refusal);
    EXPECT_TRUE(*refusal == "Kestrio was started by it." || *refusal == "a terminal waits for it.");
}

} // namespace
} // namespace kestrio
