#pragma once

#include <QMutex>
#include <QObject>

#include <memory>
#include <vector>

#include "Meeting/LevelMeter.h"
#include "Platform/AudioInput.h"

namespace nubble {

// What the microphone hears, as a meter that moves at most 12.5 times a second. Listens only between start()
// and stop(), and is at rest otherwise. Main thread only.
class MicLevel : public QObject {
    Q_OBJECT

public:
    MicLevel(AudioInput &input, const Clock &clock, QObject *parent = nullptr);
    explicit MicLevel(float preview, QObject *parent = nullptr); // a still one, for pictures

    [[nodiscard]] float level() const { return m_meter.level(); }
    [[nodiscard]] const LevelMeter::Bars &bars() const { return m_meter.bars(); } // oldest first
    [[nodiscard]] bool isListening() const { return m_stream != nullptr; }

    void start();
    void stop();

Q_SIGNALS:
    void changed();                  // the bars, or the level; as often as a bar comes, at most
    void failed(const QString &why); // once after each start at most

private:
    void handOver(float value); // on the stream's thread
    void takeValues();
    void fallSilent(const QString &why);
    void tell();

    AudioInput *const m_input;
    const Clock *const m_clock;
    LevelMeter m_meter;
    LevelMeter m_told;           // when changed() was emitted last
    std::vector<float> m_taken;  // kept for its room
    QMutex m_mutex;              // guards the next two
    std::vector<float> m_values; // not taken yet
    bool m_isCalled = false;     // to take them
    bool m_hasFailed = false;
    std::unique_ptr<AudioStream> m_stream; // the last, which goes first
};

} // namespace nubble
