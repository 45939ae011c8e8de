#pragma once

#include <QObject>

#include <functional>
#include <memory>

#include "Meeting/MeetingState.h"
#include "Meeting/MicLevel.h"
#include "Meeting/OtherRecorders.h"
#include "Meeting/RecorderOutput.h"
#include "Platform/Home.h"
#include "Platform/Outcome.h"
#include "Shell/SerialWorker.h"

class QUrl;

namespace nubble {

class ChildProcess;
class Defaults;
struct CommandEnd;

// Drives the recorder, a script of the user's that records the microphone and writes the meeting's notes into
// one tab of a document. It outlives the program: it is asked to finish, never ended, so that its last notes
// are written; what is asked goes to the recorder alone, which sees to its own children. Copies that the
// program has not started are found every 15 seconds. Does nothing at all until watch() is called. Main
// thread only; start() waits for a scan and for the recorder to run, each half a second at most.
class MeetingNotes : public QObject {
    Q_OBJECT

public:
    struct Surroundings {
        const ProcessTable &processes;
        AudioInput &microphone;
        std::function<QString()> clipboardText;
        std::function<void(const QUrl &)> openLink;
        QString pgrep = QStringLiteral("/usr/bin/pgrep");
    };
    // How long it waits for things; a test is in more of a hurry.
    struct Pace {
        std::chrono::milliseconds poll{15'000};
        std::chrono::milliseconds firstLook{5'000}; // after stop(), for what others have left behind
        std::chrono::milliseconds secondLook{1'000};
        std::chrono::milliseconds patience{
            500}; // of start() with a look for others; nobody waits for the rest
    };

    MeetingNotes(
        const Home &home, Defaults &defaults, const Clock &clock, Surroundings surroundings, Pace pace,
        QObject *parent = nullptr);
    // Shows that and never anything else: for pictures of the card.
    MeetingNotes(MeetingState sample, float level, QObject *parent = nullptr);
    ~MeetingNotes() override; // the recorder goes on

    void watch(); // once

    [[nodiscard]] const MeetingState &state() const { return m_state; }
    [[nodiscard]] bool canUpdateNow() const;
    [[nodiscard]] MicLevel &mic() { return m_mic; } // listens while the phase is Recording

    void start();
    void stop(); // the others as well
    void updateNow();
    void pasteLink();
    void openDoc() const;
    void trace(const QString &line) const; // into the log beside the script
    void interruptRecorder() const;        // at the program's end: it finishes by itself

Q_SIGNALS:
    void changed(); // the state

private:
    [[nodiscard]] bool isSample() const { return !m_surroundings; }
    [[nodiscard]] bool isRecorderRunning() const;
    [[nodiscard]] std::optional<QString> whyNotToStart(bool scanned) const;
    [[nodiscard]] Outcome launch(const QString &node);
    void failToStart(const QString &why);
    void receive(const QByteArray &chunk);
    void handle(const QString &line);
    void handleEnd(const CommandEnd &end);
    void setPhase(MeetingState::Phase phase);
    [[nodiscard]] bool scanNow();
    void scan(std::function<void()> then = [] {});
    void accept(const QList<RecorderProcess> &found, quint64 scan);
    void killOrphans(const QList<RecorderProcess> &remembered);
    [[nodiscard]] QString script() const;
    [[nodiscard]] QString logFile() const;
    void tell();

    const Home m_home;
    Defaults *const m_defaults; // none for a sample, as the next two
    const Clock *const m_clock;
    const std::unique_ptr<const Surroundings> m_surroundings;
    const Pace m_pace;
    MeetingState m_state;
    MeetingState m_told; // when changed() was emitted last
    MicLevel m_mic;
    QList<RecorderProcess> m_others;
    quint64 m_scans = 0;  // begun so far
    quint64 m_newest = 0; // whose result is known; what comes of one that began before is dropped
    RecorderOutput m_output;
    std::unique_ptr<ChildProcess> m_process;
    SerialWorker m_worker;
};

} // namespace nubble
