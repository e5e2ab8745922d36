#include "Kestrio/Activity/MediaInspector.h"
#include "Kestrio/Platform/Linux/ApplicationOwners.h"
#include "Kestrio/Platform/Linux/PulseAudioUse.h"
#include "Kestrio/Platform/Testing/ScriptedDesktop.h"
#include "Kestrio/Platform/Testing/ScriptedMedia.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/VirtualDisplay.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <pulse/pulseaudio.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

/// A sound server of a test's own, with two loudspeakers that go nowhere.
class SoundServer {
public:
    SoundServer() { start(); }

    std::string address() const { return "unix:" + socket().string(); }

    void start() {
        std::error_code ignored;
        std::filesystem::remove(socket(), ignored);
        server_ = run({"pulseaudio", "--daemonize=no", "--exit-idle-time=-1", "--disable-shm=yes", "--use-pid-file=no",
                       "-n", "-L", "module-null-sink sink_name=first", "-L", "module-null-sink sink_name=second", "-L",
                       "module-native-protocol-unix auth-anonymous=1 socket=" + socket().string()});
        EXPECT_TRUE(eventually([this] { return control({"info"}); })) << "no sound server";
    }
    void kill() { server_.kill(); }
    void signal(int number) const { server_.signal(number); }

    /// Plays a minute of a tone of this loudness from 0 to 1.
    TestProgram play(double loudness, const std::vector<std::string>& options = {}) {
        std::vector<std::string> command{"paplay", "--device=first"};
        command.insert(command.end(), options.begin(), options.end());
        command.push_back(tone(loudness).string());
        return run(command);
    }

    TestProgram run(const std::vector<std::string>& command) const {
        return TestProgram(command, {"PULSE_SERVER=" + address(), "HOME=" + folder_.path().string(),
                                     "XDG_RUNTIME_DIR=" + folder_.path().string(),
                                     "PULSE_RUNTIME_PATH=" + folder_.path().string(),
                                     "DISPLAY=", "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent"});
    }

    /// Whether `pactl` did what it was told.
    bool control(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "pactl");
        const auto program = run(arguments);
        int status = -1;
        const bool hasEnded = eventually([&] {
            siginfo_t ended{};
            return waitid(P_PID, static_cast<id_t>(program.process()), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
                   ended.si_pid == program.process() && ((status = ended.si_status) || true);
        });
        return hasEnded && status == 0;
    }

    /// The number that the server gave to the only stream of a kind. There must be one.
    std::string only(const std::string& kind) const {
        const auto list = folder_.path() / "list";
        const auto shell = run(
            {"sh", "-c", "pactl list short " + kind + " > '" + list.string() + "'; echo >> '" + list.string() + "'"});
        EXPECT_TRUE(eventually([&] { return fileText(list).ends_with("\n\n"); })) << kind;
        const auto text = fileText(list);
        std::filesystem::remove(list);
        return text.substr(0, text.find('\t'));
    }

private:
    std::filesystem::path socket() const { return folder_.path() / "native"; }

    std::filesystem::path tone(double loudness) const {
        constexpr std::uint32_t rate = 8000;
        constexpr std::uint32_t samples = rate * 60;
        const auto word = [](std::uint32_t value) {
            std::string bytes;
            for (int i = 0; i < 4; ++i)
                bytes += static_cast<char>(value >> (8 * i) & 0xFF);
            return bytes;
        };
        const auto half = [](std::uint32_t value) {
            return std::string{static_cast<char>(value & 0xFF), static_cast<char>(value >> 8 & 0xFF)};
        };
        std::string sound;
        for (std::uint32_t i = 0; i < samples; ++i)
            sound += half(static_cast<std::uint32_t>(
                static_cast<std::int32_t>(std::lround(loudness * 30000 * std::sin(0.35 * i)))));
        // A file of its own for each loudness: a player may not have read its one yet.
        return folder_.write(fmt::format("tone {}.wav", loudness),
                             "RIFF" + word(static_cast<std::uint32_t>(sound.size()) + 36) + "WAVEfmt " + word(16) +
                                 half(1) + half(1) + word(rate) + word(rate * 2) + half(2) + half(16) + "data" +
                                 word(static_cast<std::uint32_t>(sound.size())) + sound);
    }

    TemporaryFolder folder_;
    TestProgram server_;
};

/// A stream of the test's own process that plays noise, and that can be paused as players do it.
class PausableStream {
public:
    explicit PausableStream(const SoundServer& server) : loop_(pa_threaded_mainloop_new()) {
        pa_threaded_mainloop_start(loop_);
        const Locked locked(loop_);
        context_ = pa_context_new(pa_threaded_mainloop_get_api(loop_), "pausable");
        pa_context_connect(context_, server.address().c_str(), PA_CONTEXT_NOAUTOSPAWN, nullptr);
    }
    ~PausableStream() {
        {
            const Locked locked(loop_);
            if (stream_)
                pa_stream_unref(stream_);
            pa_context_disconnect(context_);
            pa_context_unref(context_);
        }
        pa_threaded_mainloop_stop(loop_);
        pa_threaded_mainloop_free(loop_);
    }
    PausableStream(const PausableStream&) = delete;
    PausableStream& operator=(const PausableStream&) = delete;

    /// False as long as the server has not let it in.
    bool start() {
        const Locked locked(loop_);
        if (pa_context_get_state(context_) != PA_CONTEXT_READY)
            return false;
        const pa_sample_spec sound{PA_SAMPLE_U8, 8000, 1};
        stream_ = pa_stream_new(context_, "noise", &sound, nullptr);
        pa_stream_set_write_callback(stream_, write, nullptr);
        return pa_stream_connect_playback(stream_, "first", nullptr, PA_STREAM_NOFLAGS, nullptr, nullptr) >= 0;
    }
    void pause(bool isPaused) const {
        const Locked locked(loop_);
        pa_operation_unref(pa_stream_cork(stream_, isPaused ? 1 : 0, nullptr, nullptr));
    }

private:
    struct Locked {
        explicit Locked(pa_threaded_mainloop* aLoop) : loop(aLoop) { pa_threaded_mainloop_lock(loop); }
        ~Locked() { pa_threaded_mainloop_unlock(loop); }
        Locked(const Locked&) = delete;
        Locked& operator=(const Locked&) = delete;
        pa_threaded_mainloop* loop;
    };

    static void write(pa_stream* stream, std::size_t wanted, void*) {
        std::string noise(wanted, '\0');
        for (std::size_t i = 0; i < wanted; ++i)
            noise[i] = static_cast<char>(i * 37);
        pa_stream_write(stream, noise.data(), wanted, nullptr, 0, PA_SEEK_RELATIVE);
    }

    pa_threaded_mainloop* const loop_;
    pa_context* context_ = nullptr;
    pa_stream* stream_ = nullptr;
};

using Processes = std::vector<pid_t>;

Processes processes(const std::vector<ApplicationTrace>& traces) {
    Processes result;
    for (const auto& trace : traces)
        result.push_back(trace.process.value_or(0));
    std::sort(result.begin(), result.end());
    return result;
}

struct PulseAudioUseTest : testing::Test {
    SoundServer server;
    PulseAudioUse use{{.server = server.address(), .silenceAfter = Seconds(3), .betweenAttempts = Seconds(0.05)}};

    bool isPlaying(const Processes& wanted) {
        return eventually([&] { return processes(use.playing()) == wanted; });
    }
    bool isRecording(const Processes& wanted) {
        return eventually([&] { return processes(use.recording()) == wanted; });
    }
    /// Returns when something that plays has been heard, and with it whatever else would have been.
    void passTheTimeOfHearing() {
        const auto other = server.play(0.5);
        EXPECT_TRUE(eventually([&] {
            const auto all = processes(use.playing());
            return std::find(all.begin(), all.end(), other.process()) != all.end();
        }));
    }
};

TEST_F(PulseAudioUseTest, whoeverCanBeHeardPlays) {
    EXPECT_TRUE(use.playing().empty());
    const auto one = server.play(0.5);
    EXPECT_TRUE(isPlaying({one.process()}));
    EXPECT_TRUE(use.recording().empty()) << "its own meter counts as a recording";
    auto other = server.play(0.5);
    Processes both{one.process(), other.process()};
    std::sort(both.begin(), both.end());
    EXPECT_TRUE(isPlaying(both));
    other.kill();
    EXPECT_TRUE(isPlaying({one.process()}));
}

TEST_F(PulseAudioUseTest, aTraceTellsProcessAndName) {
    const auto one = server.play(0.5, {"--client-name=The Player"});
    ASSERT_TRUE(isPlaying({one.process()}));
    EXPECT_EQ(use.playing().front().name, "The Player");
}

TEST_F(PulseAudioUseTest, whatPlayedBeforeTheBeginningIsFound) {
    const auto one = server.play(0.5);
    ASSERT_TRUE(isPlaying({one.process()}));
    PulseAudioUse later({.server = server.address()});
    EXPECT_TRUE(eventually([&] { return processes(later.playing()) == Processes{one.process()}; }));
}

TEST_F(PulseAudioUseTest, anOpenStreamWithoutASoundDoesNotPlay) {
    const auto silent = server.play(0);
    passTheTimeOfHearing();
    EXPECT_TRUE(isPlaying({}));
}

TEST_F(PulseAudioUseTest, whatIsBarelyAudiblePlays) {
    const auto faint = server.play(0.003);
    EXPECT_TRUE(isPlaying({faint.process()}));
}

TEST_F(PulseAudioUseTest, aMutedStreamDoesNotPlay) {
    const auto one = server.play(0.5);
    ASSERT_TRUE(isPlaying({one.process()}));
    const auto stream = server.only("sink-inputs");
    ASSERT_TRUE(server.control({"set-sink-input-mute", stream, "1"}));
    EXPECT_TRUE(isPlaying({}));
    ASSERT_TRUE(server.control({"set-sink-input-mute", stream, "0"}));
    EXPECT_TRUE(isPlaying({one.process()}));
}

TEST_F(PulseAudioUseTest, aStreamThatIsTurnedDownToNothingDoesNotPlay) {
    const auto one = server.play(0.5);
    ASSERT_TRUE(isPlaying({one.process()}));
    const auto stream = server.only("sink-inputs");
    ASSERT_TRUE(server.control({"set-sink-input-volume", stream, "0"}));
    EXPECT_TRUE(isPlaying({}));
    ASSERT_TRUE(server.control({"set-sink-input-volume", stream, "50%"}));
    EXPECT_TRUE(isPlaying({one.process()}));
}

TEST_F(PulseAudioUseTest, aSwitchedOffLoudspeakerLeavesThePlayerPlaying) {
    const auto one = server.play(0.5);
    ASSERT_TRUE(isPlaying({one.process()}));
    ASSERT_TRUE(server.control({"set-sink-mute", "first", "1"}));
    passTheTimeOfHearing();
    EXPECT_TRUE(isPlaying({one.process()}));
}

TEST_F(PulseAudioUseTest, aPausedStreamDoesNotPlayUntilItGoesOn) {
    PausableStream stream(server);
    ASSERT_TRUE(eventually([&] { return stream.start(); }));
    ASSERT_TRUE(isPlaying({getpid()}));
    stream.pause(true);
    EXPECT_TRUE(isPlaying({}));
    stream.pause(false);
    EXPECT_TRUE(isPlaying({getpid()}));
}

TEST_F(PulseAudioUseTest, aStreamThatFallsSilentPlaysNoLonger) {
    const auto one = server.play(0.5);
    ASSERT_TRUE(isPlaying({one.process()}));
    ASSERT_TRUE(server.control({"suspend-sink", "first", "1"})); // it goes nowhere, and does not know
    EXPECT_TRUE(isPlaying({}));
    ASSERT_TRUE(server.control({"suspend-sink", "first", "0"}));
    EXPECT_TRUE(isPlaying({one.process()}));
}

TEST_F(PulseAudioUseTest, aStoppedProcessNeitherPlaysNorRecords) {
    const auto player = server.play(0.5);
    const auto recorder = server.run({"parec", "--device=first.monitor", "/dev/null"});
    ASSERT_TRUE(isPlaying({player.process()}));
    ASSERT_TRUE(isRecording({recorder.process()}));
    player.signal(SIGSTOP);
    recorder.signal(SIGSTOP);
    EXPECT_TRUE(isPlaying({}));
    EXPECT_TRUE(isRecording({}));
    player.signal(SIGCONT);
    recorder.signal(SIGCONT);
    EXPECT_TRUE(isRecording({recorder.process()}));
    EXPECT_TRUE(isPlaying({player.process()}));
}

TEST_F(PulseAudioUseTest, whoeverTakesSoundInRecords) {
    auto recorder = server.run({"parec", "--device=first.monitor", "/dev/null"});
    EXPECT_TRUE(isRecording({recorder.process()}));
    EXPECT_TRUE(use.playing().empty());
    recorder.kill();
    EXPECT_TRUE(isRecording({}));
}

TEST_F(PulseAudioUseTest, theMetersOfOthersDoNotRecord) {
    const auto player = server.play(0.5);
    PulseAudioUse other({.server = server.address()});
    ASSERT_TRUE(isPlaying({player.process()}));
    ASSERT_TRUE(eventually([&] { return other.playing().size() == 1; }));
    const auto recorder = server.run({"parec", "--device=first.monitor", "/dev/null"});
    EXPECT_TRUE(isRecording({recorder.process()}));
}

TEST_F(PulseAudioUseTest, aStreamThatMovesToAnotherLoudspeakerPlaysOn) {
    const auto player = server.play(0.5);
    ASSERT_TRUE(isPlaying({player.process()}));
    ASSERT_TRUE(server.control({"move-sink-input", server.only("sink-inputs"), "second"}));
    passTheTimeOfHearing();
    EXPECT_TRUE(isPlaying({player.process()}));
    ASSERT_TRUE(server.control({"suspend-sink", "second", "1"})) << "it is listened to where it is now";
    EXPECT_TRUE(isPlaying({}));
}

TEST_F(PulseAudioUseTest, withoutAServerNothingPlaysUntilOneComes) {
    const auto player = server.play(0.5);
    const auto recorder = server.run({"parec", "--device=first.monitor", "/dev/null"});
    ASSERT_TRUE(isPlaying({player.process()}));
    ASSERT_TRUE(isRecording({recorder.process()}));
    server.kill();
    EXPECT_TRUE(isPlaying({}));
    EXPECT_TRUE(isRecording({}));
    server.start();
    const auto next = server.play(0.5);
    EXPECT_TRUE(isPlaying({next.process()}));
}

TEST_F(PulseAudioUseTest, aServerThatDoesNotAnswerHoldsNobodyUp) {
    const auto player = server.play(0.5);
    ASSERT_TRUE(isPlaying({player.process()}));
    server.signal(SIGSTOP);
    EXPECT_TRUE(isPlaying({})) << "nothing is heard any more";
    {
        PulseAudioUse other({.server = server.address()});
        EXPECT_TRUE(other.playing().empty());
    }
    server.signal(SIGCONT);
    EXPECT_TRUE(isPlaying({player.process()}));
}

TEST_F(PulseAudioUseTest, theSoundOfAHelperProcessIsItsApplications) {
    const auto application = server.run({"sh", "-c",
                                         "parec --device=first.monitor /dev/null & head -c 4000000 "
                                         "/dev/urandom | pacat --playback --device=first; wait"});
    const SystemClock clock;
    DesktopEntries entries({}, "", clock);
    ApplicationIdentity identity(entries, IdentityCatalogue::builtIn());
    ScriptedWorkspace workspace;
    workspace.running = {{"org.example.Browser", "Browser", application.process()}};
    ApplicationOwners owners(workspace, identity);
    ScriptedSleepInhibitors inhibitors;
    MediaInspector inspector(
        use, inhibitors, [&](const ApplicationTrace& trace) { return owners.bundleIdentifier(trace); }, "");
    const std::set<std::string> browser{"org.example.Browser"};
    EXPECT_TRUE(eventually([&] { return inspector.appsPlayingAudio() == browser; }));
    EXPECT_TRUE(eventually([&] { return inspector.appsRecordingAudio() == browser; }));
    EXPECT_NE(use.playing().front().process, application.process());
}

TEST(PulseAudioUse, withoutAnyServerNothingPlays) {
    PulseAudioUse use({.server = "unix:/nonexistent/native", .betweenAttempts = Seconds(0)});
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(use.playing().empty());
        EXPECT_TRUE(use.recording().empty());
    }
}

} // namespace
} // namespace kestrio
