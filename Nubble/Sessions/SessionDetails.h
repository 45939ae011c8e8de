#pragma once

#include <QHash>
#include <QList>
#include <QObject>

#include "Sessions/ClaudeSession.h"
#include "Sessions/SessionDetail.h"
#include "Sessions/Transcripts.h"
#include "Shell/SerialWorker.h"

namespace nubble {

class Clock;

// What the transcripts tell about the live sessions. Main thread only; the files are read on a worker, so no
// caller is ever blocked but the one that asks for it. Failures are silent and looked at again at the
// next update.
class SessionDetails : public QObject {
    Q_OBJECT

public:
    SessionDetails(const QString &projectsFolder, const Clock &clock, QObject *parent = nullptr);
    explicit SessionDetails(QHash<QString, SessionDetail> sample); // these alone, for pictures

    [[nodiscard]] const QHash<QString, SessionDetail> &byId() const { return m_byId; }

    // Reads what has changed, or looks at every transcript again with `force`. Returns at once.
    void update(const QList<ClaudeSession> &sessions, bool force);

    // Blocks until everything asked for so far has been read and published.
    void waitForDone();

Q_SIGNALS:
    void byIdChanged();

private:
    void publish(const QHash<QString, SessionDetail> &details);

    const Clock *const m_clock; // none for a sample
    QHash<QString, SessionDetail> m_byId;
    bool m_force = false;      // of the newest request
    Transcripts m_transcripts; // the worker's alone
    SerialWorker m_worker;
};

} // namespace nubble
