#include "Usage/CacheScan.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "Usage/CacheEntry.h"

namespace nubble {

namespace {

constexpr size_t filesExamined = 600;
constexpr qint64 headLength = 8192; // enough of a file for its key

struct CloseFolder {
    void operator()(DIR *folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

Folder openFolder(const QByteArray &path)
{
    const int descriptor = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    Folder folder(::fdopendir(descriptor));
    if (!folder)
        ::close(descriptor);
    return folder;
}

// Whether a file of that name, size and kind can be an entry; tells its status in `info`.
bool canBeEntry(int folder, const char *name, struct stat &info)
{
    return QByteArrayView(name).endsWith("_0") && ::fstatat(folder, name, &info, 0) == 0
        && S_ISREG(info.st_mode) && info.st_size > CacheEntry::headerSize
        && info.st_size < CacheEntry::sizeLimit;
}

} // namespace

struct CacheScan::Candidate {
    FileTime modified;
    qint64 position; // in the listing
    QByteArray name;
    State state;

    bool operator<(const Candidate &other) const // newest first, then as listed
    {
        return modified != other.modified ? modified > other.modified : position < other.position;
    }
};

CacheScan::CacheScan(QByteArray folder, QByteArray domain)
    : m_folder(std::move(folder)), m_domain(std::move(domain))
{
}

// Keeps a heap of the newest files seen so far, the oldest of them on top: memory stays bounded in a folder
// of any size.
std::vector<CacheScan::Candidate> CacheScan::newestIn(DIR *folder)
{
    std::vector<Candidate> heap;
    struct stat info { };
    errno = 0;
    for (qint64 position = 0; const dirent *each = ::readdir(folder); ++position, errno = 0) {
        if (!canBeEntry(::dirfd(folder), each->d_name, info))
            continue;
        const FileTime modified = fileTimeOf(info.st_mtim);
        if (heap.size() == filesExamined) {
            if (modified <= heap.front().modified)
                continue;
            std::pop_heap(heap.begin(), heap.end());
            heap.pop_back();
        }
        heap.push_back(
            {modified, position, each->d_name, {info.st_ino, info.st_size, fileTimeOf(info.st_ctim)}});
        std::push_heap(heap.begin(), heap.end());
    }
    if (errno != 0)
        return {};
    std::sort_heap(heap.begin(), heap.end());
    return heap;
}

// Absent when the file cannot be read now.
std::optional<bool> CacheScan::holdsUsage(int folder, const QByteArray &name) const
{
    const auto file = RegularFile::open(name.constData(), folder);
    const auto head = file ? file->read(0, headLength) : std::nullopt;
    if (!head)
        return std::nullopt;
    const auto key = CacheEntry::keyOf(*head);
    return key && CacheEntry::isUsageKey(*key, m_domain);
}

QList<QByteArray> CacheScan::usageEntries()
{
    QList<QByteArray> found;
    QHash<QByteArray, Verdict> verdicts;
    const Folder folder = openFolder(m_folder);
    for (const Candidate &each : folder ? newestIn(folder.get()) : std::vector<Candidate>()) {
        const Verdict last = m_verdicts.value(each.name);
        const auto isUsage =
            last.state == each.state ? last.isUsage : holdsUsage(::dirfd(folder.get()), each.name);
        if (!isUsage)
            continue;
        verdicts.insert(each.name, {each.state, *isUsage});
        if (*isUsage)
            found.append(m_folder + '/' + each.name);
    }
    m_verdicts = verdicts;
    return found;
}

} // namespace nubble
