#include "Sessions/SessionDetails.h"

#include "Platform/Clock.h"
#include "Platform/MainThread.h"

using namespace Qt::StringLiterals;

namespace nubble {

SessionDetails::SessionDetails(const QString &projectsFolder, const Clock &clock, QObject *parent)
    : QObject(parent), m_clock(&clock), m_transcripts(projectsFolder), m_worker(u"SessionDetails"_s)
{
}

SessionDetails::SessionDetails(QHash<QString, SessionDetail> sample)
    : m_clock(nullptr), m_byId(std::move(sample)), m_transcripts(QString()), m_worker(u"SessionDetails"_s)
{
}

void SessionDetails::update(const QList<ClaudeSession> &sessions, bool force)
{
    assertMainThread("Nubble/Sessions/SessionDetails");
    if (!m_clock)
        return;
    m_force =
        force || (m_force && m_worker.hasLatestWaiting()); // what is replaced may have been to look at all
    m_worker.addLatest(
        [this, sessions, all = m_force, now = m_clock->now()](const std::stop_token &stop) {
            return m_transcripts.update(sessions, all, now, stop);
        },
        [this](const QHash<QString, SessionDetail> &details) { publish(details); });
}

void SessionDetails::waitForDone()
{
    m_worker.waitForDone();
}

void SessionDetails::publish(const QHash<QString, SessionDetail> &details)
{
    assertMainThread("Nubble/Sessions/SessionDetails");
    if (details == m_byId)
        return;
    m_byId = details;
    Q_EMIT byIdChanged();
}

} // namespace nubble
