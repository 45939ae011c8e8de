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
    qint64 position; // in the listing
    QByteArray name;
    FileState state;

    bool operator<(const Candidate &other) const // newest first, then as listed
    {
        return state.modified != other.state.modified ? state.modified > other.state.modified
                                                      : position < other.position;
    }
};

CacheScan::CacheScan(QByteArray folder, QByteArray domain)
    : m_folder(std::move(folder)), m_domain(std::move(domain))
{
}

// Keeps a heap of the newest files seen so far, the oldest of them on top: memory stays bounded in a folder
// of any size.
std::optional<std::vector<CacheScan::Candidate>> CacheScan::newestIn(DIR *folder)
{
    std::vector<Candidate> heap;
    struct stat info { };
    errno = 0;
    for (qint64 position = 0; const dirent *each = ::readdir(folder); ++position, errno = 0) {
        if (!canBeEntry(::dirfd(folder), each->d_name, info))
            continue;
        const FileState state = fileStateOf(info);
        if (heap.size() == filesExamined) {
            if (state.modified <= heap.front().state.modified)
                continue;
            std::pop_heap(heap.begin(), heap.end());
            heap.pop_back();
        }
        heap.push_back({position, each->d_name, state});
        std::push_heap(heap.begin(), heap.end());
    }
    if (errno != 0)
        return std::nullopt;
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
    if (m_settled && fileStateOf(m_folder) == m_folderState)
        return m_found;
    const Folder folder = openFolder(m_folder);
    struct stat info { };
    const auto state = folder && ::fstat(::dirfd(folder.get()), &info) == 0 ? std::optional(fileStateOf(info))
                                                                            : std::nullopt;
    const bool isWhole = list(folder.get());
    m_settled = isWhole && state && state == m_folderState;
    m_folderState = state;
    return m_found;
}

// False when something could not be read, which the folder's state does not tell of once it can.
bool CacheScan::list(DIR *folder)
{
    const auto candidates = folder ? newestIn(folder) : std::nullopt;
    bool isWhole = candidates.has_value();
    QHash<QByteArray, Verdict> verdicts;
    m_found.clear();
    for (const Candidate &each : candidates.value_or(std::vector<Candidate>())) {
        const Verdict last = m_verdicts.value(each.name);
        const auto isUsage = last.state == each.state ? last.isUsage : holdsUsage(::dirfd(folder), each.name);
        if (isUsage)
            verdicts.insert(each.name, {each.state, *isUsage});
        else
            isWhole = false;
        if (isUsage.value_or(false))
            m_found.append(m_folder + '/' + each.name);
    }
    m_verdicts = verdicts;
    return isWhole;
}

void CacheScan::forget()
{
    m_settled = false;
    m_folderState.reset();
}

} // namespace nubble
