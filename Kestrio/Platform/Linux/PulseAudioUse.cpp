#include "Kestrio/Platform/Linux/PulseAudioUse.h"

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/Linux/Locations.h"
#include "Kestrio/Platform/Linux/PulseTraces.h"
#include "Kestrio/Platform/Linux/ResponsibleProcess.h"

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <pthread.h>
#include <pulse/pulseaudio.h>
#include <signal.h>
#include <span>
#include <string_view>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace kestrio {
namespace {

/// Whether it is worth looking for the person's own server. Not only to save the attempt: the library furnishes a home
/// that has never known sound with a folder and a cookie.
bool isServerLikely() {
    if (processEnvironment("PULSE_SERVER"))
        return true;
    std::error_code ignored;
    const auto exists = [&](const char* variable, const char* below) {
        const auto folder = processEnvironment(variable);
        return folder && std::filesystem::exists(std::filesystem::path(*folder) / below, ignored);
    };
    return exists("XDG_RUNTIME_DIR", "pulse/native") || exists("HOME", ".config/pulse/cookie") ||
           exists("HOME", ".pulse-cookie");
}

/// The server makes peaks of the sound, this many a second, and sends them in lots.
constexpr std::uint32_t peaksPerSecond = 25;
constexpr std::uint32_t peaksPerMessage = peaksPerSecond / 2;
/// -80 dB: above the last bit of 16 and its noise, far below anything that is heard.
constexpr float silence = 1e-4F;

/// How long the end of the program waits for the thread.
constexpr std::chrono::milliseconds patience{400};

struct ForgetOperation {
    void operator()(pa_operation* operation) const {
        pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }
};
/// An answer on its way, which nobody waits for any longer once this is dropped.
using Operation = std::unique_ptr<pa_operation, ForgetOperation>;

/// An answer on its way that is wanted as long as the context lives.
void leaveToItself(pa_operation* operation) {
    if (operation)
        pa_operation_unref(operation);
}

/// Listens to one stream of others, without taking its sound: told are the moments at which something was heard.
class Meter {
public:
    struct Listener {
        virtual ~Listener() = default;
        virtual void heard(std::uint32_t stream) = 0;
        virtual void cannotHear(std::uint32_t stream) = 0;
    };

    Meter(pa_context* context, std::uint32_t stream, std::uint32_t sink, Listener& listener)
        : context_(context), index_(stream), sink_(sink), listener_(listener) {
        lookUp_.reset(pa_context_get_sink_info_by_index(context, sink, onSink, this));
    }
    ~Meter() {
        if (!stream_)
            return;
        pa_stream_set_read_callback(stream_, nullptr, nullptr);
        pa_stream_set_state_callback(stream_, nullptr, nullptr);
        pa_stream_disconnect(stream_);
        pa_stream_unref(stream_);
    }
    Meter(const Meter&) = delete;
    Meter& operator=(const Meter&) = delete;

    std::uint32_t sink() const { return sink_; }

private:
    static void onSink(pa_context*, const pa_sink_info* sink, int end, void* self) {
        if (sink)
            static_cast<Meter*>(self)->listenTo(sink->monitor_source);
        else if (end < 0)
            static_cast<Meter*>(self)->fail();
    }

    void listenTo(std::uint32_t monitor) {
        const pa_sample_spec peaks{PA_SAMPLE_FLOAT32NE, peaksPerSecond, 1};
        stream_ = pa_stream_new(context_, "Kestrio level", &peaks, nullptr);
        if (!stream_) {
            fail();
            return;
        }
        pa_stream_set_monitor_stream(stream_, index_);
        pa_stream_set_read_callback(stream_, onPeaks, this);
        pa_stream_set_state_callback(stream_, onState, this);
        pa_buffer_attr lot{};
        lot.maxlength = static_cast<std::uint32_t>(-1);
        lot.fragsize = peaksPerMessage * sizeof(float);
        const auto flags =
            static_cast<pa_stream_flags_t>(PA_STREAM_PEAK_DETECT | PA_STREAM_DONT_MOVE | PA_STREAM_ADJUST_LATENCY |
                                           PA_STREAM_DONT_INHIBIT_AUTO_SUSPEND);
        if (pa_stream_connect_record(stream_, std::to_string(monitor).c_str(), &lot, flags) < 0)
            fail();
    }

    static void onState(pa_stream* stream, void* self) {
        const auto state = pa_stream_get_state(stream);
        if (state == PA_STREAM_FAILED || state == PA_STREAM_TERMINATED)
            static_cast<Meter*>(self)->fail();
    }

    static void onPeaks(pa_stream* stream, std::size_t, void* self) {
        bool isLoud = false;
        const void* data = nullptr;
        std::size_t size = 0;
        while (pa_stream_peek(stream, &data, &size) == 0 && size > 0) {
            // A hole in the stream has a length and no data.
            const auto* first = static_cast<const float*>(data);
            const std::span peaks(first, first ? size / sizeof(float) : 0);
            isLoud |= std::any_of(peaks.begin(), peaks.end(), [](float peak) { return std::fabs(peak) > silence; });
            pa_stream_drop(stream);
        }
        auto& meter = *static_cast<Meter*>(self);
        if (isLoud)
            meter.listener_.heard(meter.index_);
    }

    void fail() { listener_.cannotHear(index_); }

    pa_context* const context_;
    const std::uint32_t index_;
    const std::uint32_t sink_;
    Listener& listener_;
    Operation lookUp_;
    pa_stream* stream_ = nullptr;
};

StreamProperties propertiesOf(const pa_proplist* list) {
    return [list](const char* name) {
        const char* text = pa_proplist_gets(list, name);
        return text ? std::optional<std::string>(text) : std::nullopt;
    };
}

std::string ownHostName() {
    char name[256] = {};
    return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

} // namespace

/// The connection to the server. Everything but `start`, `finish`, `playing` and `recording` belongs to its thread.
class PulseAudioUse::Session final : public std::enable_shared_from_this<Session>, public Meter::Listener {
public:
    explicit Session(Options options) : options_(std::move(options)), loop_(pa_mainloop_new()) {}
    ~Session() override { pa_mainloop_free(loop_); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void start() {
        wantsConnection_ = isWorthAnAttempt();
        lastAttempt_ = clock_.uptime();
        try {
            std::thread([self = shared_from_this()] { self->run(); }).detach();
        } catch (const std::system_error&) {
            hasEnded_ = true; // no thread to be had: nothing plays
        }
    }

    void finish() {
        std::unique_lock guard(lock_);
        isEnding_ = true;
        pa_mainloop_wakeup(loop_);
        ended_.wait_for(guard, patience, [this] { return hasEnded_; });
    }

    std::vector<ApplicationTrace> playing() {
        std::vector<ApplicationTrace> result;
        const std::lock_guard guard(lock_);
        connectIfDue();
        const auto now = clock_.uptime();
        for (const auto& [index, output] : outputs_)
            if (output.claimsToPlay && (!output.isMetered || isAudible(output, now)))
                result.push_back(output.trace);
        std::erase_if(result, [this](const ApplicationTrace& trace) { return isStopped(trace); });
        return result;
    }

    std::vector<ApplicationTrace> recording() {
        std::vector<ApplicationTrace> result;
        const std::lock_guard guard(lock_);
        connectIfDue();
        for (const auto& [index, trace] : inputs_)
            result.push_back(trace);
        std::erase_if(result, [this](const ApplicationTrace& trace) { return isStopped(trace); });
        return result;
    }

private:
    struct Output {
        ApplicationTrace trace;
        bool claimsToPlay = false;
        bool isMetered = true; // false where its sound cannot be had: its claim has to do
        std::optional<Uptime> lastHeard;
    };

    bool isAudible(const Output& output, Uptime now) const {
        return output.lastHeard && now - *output.lastHeard <= options_.silenceAfter;
    }

    /// To the server the streams of a stopped process look as if they went on.
    bool isStopped(const ApplicationTrace& trace) const {
        return trace.process && isProcessStopped(*trace.process, options_.processes);
    }

    bool isWorthAnAttempt() const { return !options_.server.empty() || isServerLikely(); }

    /// With the lock held.
    void connectIfDue() {
        const auto now = clock_.uptime();
        if (hasContext_ || wantsConnection_ || hasEnded_ || now - lastAttempt_ < options_.betweenAttempts)
            return;
        lastAttempt_ = now;
        if (!isWorthAnAttempt())
            return;
        wantsConnection_ = true;
        pa_mainloop_wakeup(loop_);
    }

    void run() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, nullptr);
        pthread_setname_np(pthread_self(), "Kestrio.sound");
        while (prepareTurn() && pa_mainloop_iterate(loop_, 1, nullptr) >= 0) {
        }
        disconnect();
        const std::lock_guard guard(lock_);
        hasEnded_ = true;
        ended_.notify_all();
    }

    /// What others asked for, and what the last turn left behind. False at the end.
    bool prepareTurn() {
        if (isLost_)
            disconnect();
        bool isWanted = false;
        {
            const std::lock_guard guard(lock_);
            if (isEnding_)
                return false;
            isWanted = std::exchange(wantsConnection_, false) && !hasContext_;
            hasContext_ |= isWanted;
        }
        if (isWanted)
            connect();
        return true;
    }

    void connect() {
        context_ = pa_context_new(pa_mainloop_get_api(loop_), "Kestrio");
        if (!context_) {
            isLost_ = true;
            return;
        }
        pa_context_set_state_callback(context_, onState, this);
        pa_context_set_subscribe_callback(context_, onEvent, this);
        const char* server = options_.server.empty() ? nullptr : options_.server.c_str();
        if (pa_context_connect(context_, server, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
            isLost_ = true;
        if (isLost_)
            disconnect();
    }

    void disconnect() {
        isLost_ = false;
        meters_.clear();
        if (auto* context = std::exchange(context_, nullptr)) {
            pa_context_set_state_callback(context, nullptr, nullptr);
            pa_context_set_subscribe_callback(context, nullptr, nullptr);
            pa_context_disconnect(context);
            pa_context_unref(context);
        }
        const std::lock_guard guard(lock_);
        hasContext_ = false;
        outputs_.clear();
        inputs_.clear();
    }

    static void onState(pa_context* context, void* self) {
        auto& session = *static_cast<Session*>(self);
        const auto state = pa_context_get_state(context);
        if (state == PA_CONTEXT_READY)
            session.askForAll();
        else if (!PA_CONTEXT_IS_GOOD(state))
            session.isLost_ = true; // not dropped in the middle of its own call
    }

    void askForAll() {
        const auto changes =
            static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK_INPUT | PA_SUBSCRIPTION_MASK_SOURCE_OUTPUT);
        leaveToItself(pa_context_subscribe(context_, changes, nullptr, nullptr));
        leaveToItself(pa_context_get_sink_input_info_list(context_, onOutput, this));
        leaveToItself(pa_context_get_source_output_info_list(context_, onInput, this));
    }

    static void onEvent(pa_context* context, pa_subscription_event_type_t event, std::uint32_t index, void* self) {
        auto& session = *static_cast<Session*>(self);
        const bool isRemoved = (event & PA_SUBSCRIPTION_EVENT_TYPE_MASK) == PA_SUBSCRIPTION_EVENT_REMOVE;
        if ((event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK) == PA_SUBSCRIPTION_EVENT_SINK_INPUT) {
            if (isRemoved)
                session.forgetOutput(index);
            else
                leaveToItself(pa_context_get_sink_input_info(context, index, onOutput, self));
        } else if (isRemoved) {
            const std::lock_guard guard(session.lock_);
            session.inputs_.erase(index);
        } else {
            leaveToItself(pa_context_get_source_output_info(context, index, onInput, self));
        }
    }

    static void onOutput(pa_context*, const pa_sink_input_info* info, int, void* self) {
        if (info)
            static_cast<Session*>(self)->takeOutput(*info);
    }

    static void onInput(pa_context*, const pa_source_output_info* info, int, void* self) {
        if (info)
            static_cast<Session*>(self)->takeInput(*info);
    }

    void takeOutput(const pa_sink_input_info& info) {
        auto trace = traceOfStream(propertiesOf(info.proplist), hostName_, options_.processes);
        if (!trace) {
            forgetOutput(info.index);
            return;
        }
        // Whether the loudspeaker itself is switched off is another matter: it plays all the same.
        const bool claims = !info.corked && !info.mute && !(info.has_volume && pa_cvolume_is_muted(&info.volume));
        const auto meter = meters_.find(info.index);
        const bool isMeterRight = meter != meters_.end() && meter->second->sink() == info.sink;
        {
            const std::lock_guard guard(lock_);
            auto& output = outputs_[info.index];
            output.trace = std::move(*trace);
            output.claimsToPlay = claims;
            if (!isMeterRight)
                output.isMetered = true;
        }
        if (!claims)
            meters_.erase(info.index);
        else if (!isMeterRight)
            meters_[info.index] = std::make_unique<Meter>(context_, info.index, info.sink, *this);
    }

    void forgetOutput(std::uint32_t index) {
        meters_.erase(index);
        const std::lock_guard guard(lock_);
        outputs_.erase(index);
    }

    void takeInput(const pa_source_output_info& info) {
        // Meters, our own and those of volume controls, take no sound in.
        const bool isMeter = info.client == pa_context_get_index(context_) ||
                             (info.resample_method && std::string_view(info.resample_method) == "peaks");
        auto trace = isMeter || info.corked ? std::nullopt
                                            : traceOfStream(propertiesOf(info.proplist), hostName_, options_.processes);
        const std::lock_guard guard(lock_);
        if (trace)
            inputs_[info.index] = std::move(*trace);
        else
            inputs_.erase(info.index);
    }

    void heard(std::uint32_t stream) override {
        const std::lock_guard guard(lock_);
        if (const auto found = outputs_.find(stream); found != outputs_.end())
            found->second.lastHeard = clock_.uptime();
    }

    void cannotHear(std::uint32_t stream) override {
        const std::lock_guard guard(lock_);
        if (const auto found = outputs_.find(stream); found != outputs_.end())
            found->second.isMetered = false;
    }

    const Options options_;
    const SystemClock clock_;
    const std::string hostName_ = ownHostName();
    pa_mainloop* const loop_;

    // On the thread.
    pa_context* context_ = nullptr;
    bool isLost_ = false;
    std::map<std::uint32_t, std::unique_ptr<Meter>> meters_; // by the stream's index

    std::mutex lock_; // guards all below; never held across a call of the library but the waking of its loop
    std::condition_variable ended_;
    bool isEnding_ = false;
    bool hasEnded_ = false;
    bool hasContext_ = false;
    bool wantsConnection_ = false;
    Uptime lastAttempt_;
    std::map<std::uint32_t, Output> outputs_;
    std::map<std::uint32_t, ApplicationTrace> inputs_;
};

PulseAudioUse::PulseAudioUse(Options options) : session_(std::make_shared<Session>(std::move(options))) {
    session_->start();
}

PulseAudioUse::~PulseAudioUse() {
    session_->finish();
}

std::vector<ApplicationTrace> PulseAudioUse::playing() {
    return session_->playing();
}

std::vector<ApplicationTrace> PulseAudioUse::recording() {
    return session_->recording();
}

} // namespace kestrio
