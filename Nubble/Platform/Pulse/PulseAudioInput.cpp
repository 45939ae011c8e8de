#include "Platform/Pulse/PulseAudioInput.h"

#include <pulse/context.h>
#include <pulse/error.h>
#include <pulse/mainloop.h>
#include <pulse/proplist.h>
#include <pulse/stream.h>

#include <array>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <thread>

using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto retryAfter = 1s;

// Frees what libpulse has made.
template <auto release> struct Release {
    template <typename T> void operator()(T *object) const { release(object); }
};

struct ContextRelease {
    void operator()(pa_context *context) const
    {
        pa_context_set_state_callback(context, nullptr, nullptr);
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
};

struct StreamRelease {
    void operator()(pa_stream *stream) const
    {
        pa_stream_set_state_callback(stream, nullptr, nullptr);
        pa_stream_set_read_callback(stream, nullptr, nullptr);
        pa_stream_disconnect(stream);
        pa_stream_unref(stream);
    }
};

// All but its destruction happens on its thread.
class PulseStream : public AudioStream {
public:
    explicit PulseStream(AudioInput::Receiver receiver)
        : m_receiver(std::move(receiver)), m_loop(pa_mainloop_new()),
          m_thread([this](const std::stop_token &stop) { run(stop); })
    {
    }

    ~PulseStream() override
    {
        m_thread.request_stop();
        pa_mainloop_wakeup(m_loop.get());
        m_thread.join();
    }
    Q_DISABLE_COPY_MOVE(PulseStream)

private:
    // Not by libpulse's simple interface, whose calls wait for a source that gives nothing, and for ever.
    void run(const std::stop_token &stop)
    {
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any stopped;
        while (!stop.stop_requested()) {
            m_isLost = false;
            connectToServer();
            while (!stop.stop_requested() && !m_isLost
                   && pa_mainloop_iterate(m_loop.get(), 1, nullptr) >= 0) { }
            m_stream.reset();
            m_context.reset();
            stopped.wait_for(lock, stop, retryAfter, [] { return false; });
        }
    }

    void connectToServer()
    {
        const std::unique_ptr<pa_proplist, Release<&pa_proplist_free>> properties(pa_proplist_new());
        pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, "com.brevandel.nubble");
        pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "com.brevandel.nubble");
        m_context.reset(
            pa_context_new_with_proplist(pa_mainloop_get_api(m_loop.get()), "Nubble", properties.get()));
        pa_context_set_state_callback(
            m_context.get(),
            [](pa_context *, void *self) { static_cast<PulseStream *>(self)->contextChanged(); }, this);
        // A meter is no reason to start a server that the desktop has not.
        if (pa_context_connect(m_context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
            lose();
    }

    void contextChanged()
    {
        const pa_context_state_t state = pa_context_get_state(m_context.get());
        if (state == PA_CONTEXT_READY)
            openStream();
        else if (!PA_CONTEXT_IS_GOOD(state))
            lose();
    }

    void openStream()
    {
        // The two flags give it the source's own rate and channels. Most have two, which makes a buffer in
        // one.
        constexpr auto flags = static_cast<pa_stream_flags_t>(
            PA_STREAM_FIX_RATE | PA_STREAM_FIX_CHANNELS | PA_STREAM_ADJUST_LATENCY);
        constexpr pa_sample_spec asked{PA_SAMPLE_FLOAT32NE, 48'000, 2};
        constexpr auto unset = std::numeric_limits<std::uint32_t>::max();
        constexpr pa_buffer_attr attributes{
            unset, unset, unset, unset, AudioInput::bufferFrames * sizeof(float) * asked.channels};
        m_stream.reset(pa_stream_new(m_context.get(), "Microphone level for meeting notes", &asked, nullptr));
        pa_stream_set_state_callback(
            m_stream.get(),
            [](pa_stream *, void *self) { static_cast<PulseStream *>(self)->streamChanged(); }, this);
        pa_stream_set_read_callback(
            m_stream.get(), [](pa_stream *, size_t, void *self) { static_cast<PulseStream *>(self)->read(); },
            this);
        if (pa_stream_connect_record(m_stream.get(), nullptr, &attributes, flags) < 0)
            lose();
    }

    void streamChanged()
    {
        if (!PA_STREAM_IS_GOOD(pa_stream_get_state(m_stream.get())))
            lose();
    }

    void read()
    {
        const std::size_t channels = pa_stream_get_sample_spec(m_stream.get())->channels;
        const void *bytes = nullptr;
        size_t size = 0;
        while (pa_stream_peek(m_stream.get(), &bytes, &size) == 0 && size > 0) {
            if (bytes) // else the server has left some out
                take({static_cast<const float *>(bytes), size / sizeof(float)}, channels);
            pa_stream_drop(m_stream.get());
        }
    }

    void take(std::span<const float> samples, std::size_t channels)
    {
        for (std::size_t i = 0; i < samples.size(); i += channels) {
            m_buffer.at(m_filled++) = samples[i];
            if (m_filled < m_buffer.size())
                continue;
            m_filled = 0;
            m_isSilent = false;
            m_receiver.buffer(m_buffer);
        }
    }

    void lose()
    {
        m_isLost = true;
        m_filled = 0;
        const int error = pa_context_errno(m_context.get());
        if (!std::exchange(m_isSilent, true))
            m_receiver.failed(error == PA_ERR_NOENTITY ? QString() : QString::fromUtf8(pa_strerror(error)));
    }

    const AudioInput::Receiver m_receiver;
    std::array<float, AudioInput::bufferFrames> m_buffer{};
    std::size_t m_filled = 0;
    bool m_isLost = false;   // the connection, or the stream
    bool m_isSilent = false; // since it has been told so
    std::unique_ptr<pa_mainloop, Release<&pa_mainloop_free>> m_loop;
    std::unique_ptr<pa_context, ContextRelease> m_context;
    std::unique_ptr<pa_stream, StreamRelease> m_stream;
    std::jthread m_thread;
};

} // namespace

std::unique_ptr<AudioStream> PulseAudioInput::listen(Receiver receiver)
{
    return std::make_unique<PulseStream>(std::move(receiver));
}

} // namespace nubble
