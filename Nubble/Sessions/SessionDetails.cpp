#include "Sessions/SessionDetails.h"

#include "Platform/Clock.h"
#include "Platform/MainThread.h"

using namespace Qt::StringLiterals;

namespace nubble {

SessionDetails::SessionDetails(QString projectsFolder, const Clock &clock, QObject *parent)
    : QObject(parent), m_clock(clock), m_transcripts(std::move(projectsFolder))
{
    m_queue.setObjectName(u"SessionDetails"_s);
    m_queue.setMaxThreadCount(1);
}

SessionDetails::~SessionDetails()
{
    m_stop.request_stop();
    m_queue.waitForDone();
}

void SessionDetails::update(const QList<ClaudeSession> &sessions, bool force)
{
    assertMainThread("Nubble/Sessions/SessionDetails");
    const QMutexLocker lock(&m_mutex);
    const bool queued = m_request.has_value();
    m_request = {sessions, force || (queued && m_request->force), m_clock.now()};
    if (!queued)
        m_queue.start([this] { work(); });
}

void SessionDetails::waitForDone()
{
    m_queue.waitForDone();
    publish();
}

void SessionDetails::work()
{
    QMutexLocker lock(&m_mutex);
    const Request request = *std::exchange(m_request, std::nullopt);
    lock.unlock();
    auto details = m_transcripts.update(request.sessions, request.force, request.now, m_stop.get_token());
    lock.relock();
    m_result = std::move(details);
    QMetaObject::invokeMethod(this, &SessionDetails::publish, Qt::QueuedConnection);
}

void SessionDetails::publish()
{
    assertMainThread("Nubble/Sessions/SessionDetails");
    QMutexLocker lock(&m_mutex);
    const auto result = std::exchange(m_result, std::nullopt);
    lock.unlock();
    if (!result || *result == m_byId)
        return;
    m_byId = *result;
    Q_EMIT byIdChanged();
}

} // namespace nubble
