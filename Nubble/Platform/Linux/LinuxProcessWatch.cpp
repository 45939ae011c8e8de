#include "Platform/Linux/LinuxProcessWatch.h"

#include <QSocketNotifier>

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace nubble {

namespace {

constexpr size_t mostProcesses = 64;

} // namespace

// A process descriptor can be read from when its process has ended.
class LinuxProcessWatch::Watched {
public:
    explicit Watched(int process) : m_process(process), m_end(process, QSocketNotifier::Read)
    {
        pollfd now{.fd = process, .events = POLLIN, .revents = 0};
        hasEnded = ::poll(&now, 1, 0) > 0;
        m_end.setEnabled(!hasEnded);
    }
    ~Watched()
    {
        m_end.setEnabled(false);
        ::close(m_process);
    }
    Q_DISABLE_COPY_MOVE(Watched)

    QSocketNotifier &end() { return m_end; }

    bool hasEnded = false;

private:
    const int m_process;
    QSocketNotifier m_end;
};

LinuxProcessWatch::LinuxProcessWatch() = default;
LinuxProcessWatch::~LinuxProcessWatch() = default;

// One that has ended is opened anew: by now its id may be another's.
bool LinuxProcessWatch::watch(const QSet<pid_t> &processes)
{
    std::erase_if(m_watched, [&processes](const auto &each) {
        return !processes.contains(each.first) || each.second->hasEnded;
    });
    for (const pid_t each : processes) {
        if (m_watched.contains(each))
            continue;
        const int process =
            m_watched.size() < mostProcesses ? static_cast<int>(::syscall(SYS_pidfd_open, each, 0)) : -1;
        if (process < 0)
            continue;
        Watched *watched = m_watched.emplace(each, std::make_unique<Watched>(process)).first->second.get();
        connect(&watched->end(), &QSocketNotifier::activated, this, [this, watched] {
            watched->end().setEnabled(false);
            watched->hasEnded = true;
            // Queued, since it may lead to the end of what sends this.
            QMetaObject::invokeMethod(this, &ProcessWatch::ended, Qt::QueuedConnection);
        });
    }
    return m_watched.size() == static_cast<size_t>(processes.size());
}

bool LinuxProcessWatch::hasEnded(pid_t process) const
{
    const auto watched = m_watched.find(process);
    return watched != m_watched.end() && watched->second->hasEnded;
}

} // namespace nubble
