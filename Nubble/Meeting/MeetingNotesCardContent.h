#pragma once

#include <QTimer>
#include <QWidget>

#include <functional>

class QLabel;

namespace nubble {

class BigButton;
class CardHeader;
class Clock;
class MeetingNotes;
class SmallButton;
class SynthWave;
class TimingLines;
class UpdateNowButton;

// The meeting notes card: the document that notes go into, how the recording stands and what the microphone
// hears, and the buttons for all that can be done about it.
class MeetingNotesCardContent : public QWidget {
    Q_OBJECT

public:
    // `notes` and `clock` outlive it; `onClose` closes the card.
    MeetingNotesCardContent(
        MeetingNotes &notes, const Clock &clock, const std::function<void()> &onClose,
        QWidget *parent = nullptr);

private:
    [[nodiscard]] QLayout *makeDocRow();
    [[nodiscard]] QLayout *makeButtons();
    void follow();
    void updateTiming();
    void press();

    MeetingNotes &m_notes;
    const Clock &m_clock;
    CardHeader *m_header;
    QLabel *m_doc;
    SmallButton *m_openDoc;
    SmallButton *m_pasteLink;
    QLabel *m_status;
    QLabel *m_linkHint;
    QLabel *m_othersHint;
    TimingLines *m_timing;
    SynthWave *m_wave;
    BigButton *m_big;
    UpdateNowButton *m_updateNow;
    QTimer m_tick; // of the clocks, while there are any
};

} // namespace nubble
