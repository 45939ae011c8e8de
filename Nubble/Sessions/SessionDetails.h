#pragma once

#include <QHash>
#include <QList>
#include <QObject>

#include <memory>

#include "Platform/FolderWatch.h"
#include "Sessions/ClaudeSession.h"
#include "Sessions/SessionDetail.h"
#include "Sessions/Transcripts.h"
#include "Shell/SerialWorker.h"

namespace nubble {

class Clock;

// What the transcripts tell about the live sessions, brought up to date by itself where `watch` tells of
// changes. Main thread only; the files are read on a worker, so no caller is ever blocked but the one that
// asks for it. Failures are silent and looked at again at the next update.
class SessionDetails : public QObject {
    Q_OBJECT

public:
    SessionDetails(
        const QStringList &projectsFolders, const Clock &clock, std::unique_ptr<FolderWatch> watch = {},
        QObject *parent = nullptr);
    explicit SessionDetails(QHash<QString, SessionDetail> sample); // these alone, for pictures

    [[nodiscard]] const QHash<QString, SessionDetail> &byId() const { return m_byId; }

    [[nodiscard]] SessionDetail of(const ClaudeSession &session) const
    {
        return m_byId.value(session.sessionId);
    }

    [[nodiscard]] bool isTold() const { return m_isTold; } // of every change, since the last update

    // Reads what has changed, or looks at every transcript again with `force`. Returns at once.
    void update(const QList<ClaudeSession> &sessions, bool force);

    // Blocks until everything asked for so far has been read and published.
    void waitForDone();

Q_SIGNALS:
    void byIdChanged();

private:
    struct Reading {
        QHash<QString, SessionDetail> details;
        bool isTold;
    };

    void publish(const Reading &reading);

    const Clock *const m_clock; // none for a sample
    QHash<QString, SessionDetail> m_byId;
    QList<ClaudeSession> m_sessions; // of the newest request, as the next
    bool m_force = false;
    const std::unique_ptr<FolderWatch> m_watch; // may be none
    bool m_isTold = m_watch != nullptr;
    Transcripts m_transcripts; // the worker's alone
    SerialWorker m_worker;
};

} // namespace nubble
