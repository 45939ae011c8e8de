#include "Sessions/SessionDetails.h"

#include "Platform/Clock.h"
#include "Platform/MainThread.h"

using namespace Qt::StringLiterals;

namespace nubble {

SessionDetails::SessionDetails(
    const QStringList &projectsFolders, const Clock &clock, std::unique_ptr<FolderWatch> watch,
    QObject *parent)
    : QObject(parent), m_clock(&clock), m_watch(std::move(watch)), m_transcripts(projectsFolders),
      m_worker(u"SessionDetails"_s)
{
    if (m_watch)
        connect(m_watch.get(), &FolderWatch::changed, this, [this] { update(m_sessions, false); });
}

SessionDetails::SessionDetails(QHash<QString, SessionDetail> sample)
    : m_clock(nullptr), m_byId(std::move(sample)), m_transcripts(QStringList()), m_worker(u"SessionDetails"_s)
{
}

void SessionDetails::update(const QList<ClaudeSession> &sessions, bool force)
{
    assertMainThread("Nubble/Sessions/SessionDetails");
    if (!m_clock)
        return;
    m_force =
        force || (m_force && m_worker.hasLatestWaiting()); // what is replaced may have been to look at all
    m_sessions = sessions;
    m_worker.addLatest(
        [this, sessions, all = m_force, now = m_clock->now()](const std::stop_token &stop) {
            Reading reading{m_transcripts.update(sessions, all, now, stop), false};
            reading.isTold = m_watch && m_watch->watch(m_transcripts.places(sessions));
            return reading;
        },
        [this](const Reading &reading) { publish(reading); });
}

void SessionDetails::waitForDone()
{
    m_worker.waitForDone();
}

void SessionDetails::publish(const Reading &reading)
{
    assertMainThread("Nubble/Sessions/SessionDetails");
    m_isTold = reading.isTold;
    if (reading.details == m_byId)
        return;
    m_byId = reading.details;
    Q_EMIT byIdChanged();
}

} // namespace nubble
