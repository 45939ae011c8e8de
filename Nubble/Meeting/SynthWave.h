#pragma once

#include <QWidget>

namespace nubble {

class MicLevel;

// What the microphone has heard, as a wave that moves to the left: the newest is at the right. Below it, in
// words, whether that is speech.
class SynthWave : public QWidget {
    Q_OBJECT

public:
    explicit SynthWave(const MicLevel &mic, QWidget *parent = nullptr); // which outlives it

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void describe();

    const MicLevel &m_mic;
};

} // namespace nubble
