#include "Platform/Linux/LinuxFolderWatch.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <linux/magic.h>
#include <string_view>
#include <sys/inotify.h>
#include <sys/vfs.h>
#include <unistd.h>

#include "Platform/Logging.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto pause = 50ms;       // between two tellings
constexpr auto lookInterval = 60s; // a link on the way may lead elsewhere by then
constexpr qsizetype mostWatches = 256;
constexpr uint32_t movements = IN_CREATE | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF;
constexpr uint32_t changes = movements | IN_MODIFY | IN_ATTRIB | IN_MOVED_FROM | IN_DELETE;

// Whether this machine is the only one that writes there.
bool isLocal(const QByteArray &folder)
{
    constexpr std::array<uint32_t, 11> shared{
        NFS_SUPER_MAGIC,  SMB_SUPER_MAGIC, SMB2_SUPER_MAGIC, CIFS_SUPER_MAGIC, V9FS_MAGIC,
        FUSE_SUPER_MAGIC, AFS_SUPER_MAGIC, CODA_SUPER_MAGIC, AFS_FS_MAGIC,     0x00c36400, // Ceph
        0x786f4256};                                                                       // VirtualBox
    struct statfs info { };
    return ::statfs(folder.constData(), &info) == 0
        && std::find(shared.begin(), shared.end(), static_cast<uint32_t>(info.f_type)) == shared.end();
}

} // namespace

LinuxFolderWatch::LinuxFolderWatch()
    : m_inotify(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)), m_arrival(QSocketNotifier::Read)
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(pause);
    m_pause.setTimerType(Qt::PreciseTimer);
    m_pause.callOnTimeout(this, [this] { m_arrival.setEnabled(true); });
    if (m_inotify < 0)
        return;
    m_arrival.setSocket(m_inotify);
    m_arrival.setEnabled(true);
    connect(&m_arrival, &QSocketNotifier::activated, this, &LinuxFolderWatch::readEvents);
}

LinuxFolderWatch::~LinuxFolderWatch()
{
    m_arrival.setEnabled(false);
    if (m_inotify >= 0)
        ::close(m_inotify);
}

bool LinuxFolderWatch::watch(const QList<WatchedEntries> &entries)
{
    const auto now = std::chrono::steady_clock::now();
    if (m_inotify < 0)
        return false;
    if (!m_hasMoved.exchange(false) && entries == m_entries && now - m_lookedAt < lookInterval)
        return m_tellsAll;
    m_entries = entries;
    m_lookedAt = now;
    Watches watches;
    const bool toldAllBefore = m_tellsAll;
    m_tellsAll = true;
    for (const WatchedEntries &each : entries)
        m_tellsAll = watches.size() < mostWatches && add(each, watches) && m_tellsAll;
    if (m_tellsAll != toldAllBefore)
        qCDebug(logPlatform) << (m_tellsAll ? "watches" : "cannot watch all of") << entries.size()
                             << "folders";
    replaceBy(watches);
    return m_tellsAll;
}

bool LinuxFolderWatch::add(const WatchedEntries &entries, Watches &watches) const
{
    QByteArray folder = entries.folder;
    QByteArray ending = entries.ending;
    while (true) {
        const bool isWaitedIn = folder.size() < entries.folder.size();
        const uint32_t mask = (isWaitedIn ? movements : changes) | IN_ONLYDIR | IN_MASK_ADD;
        const int number = ::inotify_add_watch(m_inotify, folder.constData(), mask);
        if (number >= 0) {
            Watched &watched = watches[number];
            watched.endings.insert(ending);
            watched.isWaitedIn = watched.isWaitedIn || isWaitedIn;
            return isLocal(folder);
        }
        const qsizetype slash = folder.lastIndexOf('/');
        if ((errno != ENOENT && errno != ENOTDIR) || slash < 0 || folder.size() == 1)
            return false;
        ending = folder.sliced(slash + 1);
        folder.truncate(std::max<qsizetype>(slash, 1));
    }
}

// What came before a watch began is to be read, and what is waited for may have been made meanwhile.
void LinuxFolderWatch::replaceBy(const Watches &watches)
{
    const QMutexLocker lock(&m_mutex);
    if (watches == m_watches)
        return;
    for (auto each = m_watches.keyBegin(); each != m_watches.keyEnd(); ++each)
        if (!watches.contains(*each))
            ::inotify_rm_watch(m_inotify, *each);
    m_watches = watches;
    m_hasMoved = true;
    QMetaObject::invokeMethod(this, &FolderWatch::changed, Qt::QueuedConnection);
}

void LinuxFolderWatch::readEvents()
{
    alignas(inotify_event) std::array<char, 16'384> buffer{};
    bool isConcerned = false;
    const ssize_t size = ::read(m_inotify, buffer.data(), buffer.size());
    for (ssize_t at = 0; at < size;) {
        const auto *event = reinterpret_cast<const inotify_event *>(buffer.data() + at);
        isConcerned = concerns(*event, event->name) || isConcerned;
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
    }
    if (!isConcerned)
        return;
    m_arrival.setEnabled(false);
    m_pause.start();
    Q_EMIT changed();
}

bool LinuxFolderWatch::concerns(const inotify_event &event, const char *name)
{
    const QMutexLocker lock(&m_mutex);
    const auto watched = m_watches.constFind(event.wd);
    const bool isLost = (event.mask & IN_Q_OVERFLOW) != 0;
    if (watched == m_watches.cend() && !isLost)
        return false; // is watched no more
    if (isLost || (event.mask & (IN_IGNORED | IN_UNMOUNT | IN_DELETE_SELF | IN_MOVE_SELF)) != 0) {
        m_hasMoved = true;
        return true;
    }
    const std::string_view entry = event.len > 0 ? name : "";
    const bool isWatched =
        std::any_of(watched->endings.begin(), watched->endings.end(), [&](const QByteArray &each) {
            return entry.ends_with(std::string_view(each));
        });
    m_hasMoved = m_hasMoved || (isWatched && watched->isWaitedIn);
    return isWatched;
}

} // namespace nubble
