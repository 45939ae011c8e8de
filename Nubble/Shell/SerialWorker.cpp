#include "Shell/SerialWorker.h"

#include <QSemaphore>

#include <algorithm>
#include <memory>
#include <sys/resource.h>
#include <utility>

namespace nubble {

SerialWorker::SerialWorker(const QString &name, int niceness) : m_niceness(niceness)
{
    m_thread.setObjectName(name);
    m_thread.setMaxThreadCount(1);
    m_thread.setExpiryTimeout(-1); // so that work every minute does not start a thread each time
}

SerialWorker::~SerialWorker()
{
    m_stop.request_stop();
    {
        const QMutexLocker lock(&m_mutex);
        m_jobs.clear();
    }
    m_thread.waitForDone();
}

bool SerialWorker::hasLatestWaiting() const
{
    const QMutexLocker lock(&m_mutex);
    return std::any_of(m_jobs.begin(), m_jobs.end(), [](const Job &each) { return each.isLatest; });
}

bool SerialWorker::waitForDone(std::optional<std::chrono::milliseconds> patience)
{
    // Not QThreadPool::waitForDone(), which ends the thread.
    const auto reached = std::make_shared<QSemaphore>();
    m_thread.start([reached] { reached->release(); });
    const bool isDone = reached->tryAcquire(1, patience ? static_cast<int>(patience->count()) : -1);
    while (publishNext()) { }
    return isDone;
}

void SerialWorker::handIn(Job job)
{
    const QMutexLocker lock(&m_mutex);
    const auto replaced = std::find_if(
        m_jobs.begin(), m_jobs.end(), [&](const Job &each) { return job.isLatest && each.isLatest; });
    if (replaced != m_jobs.end()) {
        *replaced = std::move(job);
        return;
    }
    m_jobs.push_back(std::move(job));
    m_thread.start([this] { runNext(); });
}

void SerialWorker::runNext()
{
    lowerPriority();
    QMutexLocker lock(&m_mutex);
    if (m_jobs.empty())
        return;
    const Job job = std::move(m_jobs.front());
    m_jobs.pop_front();
    lock.unlock();
    Publication publication = job.run(m_stop.get_token());
    lock.relock();
    m_publications.push_back(std::move(publication));
    QMetaObject::invokeMethod(
        &m_publisher, [this] { publishNext(); }, Qt::QueuedConnection);
}

bool SerialWorker::publishNext()
{
    QMutexLocker lock(&m_mutex);
    if (m_publications.empty())
        return false;
    const Publication publication = std::move(m_publications.front());
    m_publications.pop_front();
    lock.unlock();
    publication();
    return true;
}

// QThread's priorities do nothing under Linux's ordinary scheduling; each thread has a niceness, though.
void SerialWorker::lowerPriority() const
{
    thread_local bool isLowered = false;
    if (std::exchange(isLowered, true) || m_niceness == 0)
        return;
    ::setpriority(PRIO_PROCESS, 0, m_niceness); // 0: this thread alone
}

} // namespace nubble
