#pragma once

#include <QHash>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QThreadPool>

#include <optional>
#include <stop_token>

#include "Sessions/ClaudeSession.h"
#include "Sessions/SessionDetail.h"
#include "Sessions/Transcripts.h"

namespace nubble {

class Clock;

// What the transcripts tell about the live sessions. Main thread only; the files are read on a serial queue,
// so no caller is ever blocked but the one that asks for it. Failures are silent and looked at again at the
// next update.
class SessionDetails : public QObject {
    Q_OBJECT

public:
    SessionDetails(QString projectsFolder, const Clock &clock, QObject *parent = nullptr);
    ~SessionDetails() override;

    [[nodiscard]] const QHash<QString, SessionDetail> &byId() const { return m_byId; }

    // Reads what has changed, or looks at every transcript again with `force`. Returns at once.
    void update(const QList<ClaudeSession> &sessions, bool force);

    // Blocks until everything asked for so far has been read and published.
    void waitForDone();

Q_SIGNALS:
    void byIdChanged();

private:
    struct Request {
        QList<ClaudeSession> sessions;
        bool force;
        TimePoint now;
    };

    void work();
    void publish();

    const Clock &m_clock;
    QHash<QString, SessionDetail> m_byId;
    Transcripts m_transcripts;        // the queue's alone
    QMutex m_mutex;                   // guards the two below
    std::optional<Request> m_request; // a newer one takes the place of one that was not begun
    std::optional<QHash<QString, SessionDetail>> m_result;
    std::stop_source m_stop;
    QThreadPool m_queue;
};

} // namespace nubble
