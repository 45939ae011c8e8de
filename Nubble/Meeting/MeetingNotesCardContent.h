#pragma once

#include <QTimer>
#include <QWidget>

class QBoxLayout;
class QLabel;

namespace nubble {

class BigButton;
class CardHeader;
struct CardRoom;
class Clock;
class MeetingNotes;
class NotchButton;
class SmallButton;
class SynthWave;
class TimingLines;
class UpdateNowButton;

// The meeting notes card: the document that notes go into, how the recording stands and what the microphone
// hears, and the buttons for all that can be done about it.
class MeetingNotesCardContent : public QWidget {
    Q_OBJECT

public:
    // `notes` and `clock` outlive it.
    MeetingNotesCardContent(MeetingNotes &notes, const Clock &clock, const CardRoom &room);

private:
    [[nodiscard]] QLayout *makeDocRow();
    [[nodiscard]] QLayout *makeButtons();
    void follow();
    void showStatus(const QString &status);
    void updateTiming();
    void press();

    MeetingNotes &m_notes;
    const Clock &m_clock;
    const int m_room; // for its height
    CardHeader *m_header;
    NotchButton *m_close;
    QBoxLayout *m_body;
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
