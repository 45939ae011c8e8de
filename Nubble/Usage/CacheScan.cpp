#include "Usage/CacheScan.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "Platform/RegularFile.h"
#include "Usage/CacheEntry.h"

namespace nubble {

namespace {

constexpr size_t filesExamined = 600;
constexpr qint64 headLength = 8192; // enough of a file for its key

struct CloseFolder {
    void operator()(DIR *folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

struct Candidate {
    qint64 modifiedNsecs;
    qint64 position; // in the listing
    QByteArray name;

    bool operator<(const Candidate &other) const // newest first, then as listed
    {
        return modifiedNsecs != other.modifiedNsecs ? modifiedNsecs > other.modifiedNsecs
                                                    : position < other.position;
    }
};

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

std::optional<qint64> modificationOfEntry(int folder, const char *name)
{
    struct stat info { };
    if (!QByteArrayView(name).endsWith("_0") || ::fstatat(folder, name, &info, 0) != 0
        || !S_ISREG(info.st_mode) || info.st_size <= CacheEntry::headerSize
        || info.st_size >= CacheEntry::sizeLimit)
        return std::nullopt;
    return nsecsSinceEpoch(info.st_mtim);
}

// A heap of the newest files seen so far, the oldest of them on top: memory stays bounded in a folder of any
// size.
void keepNewest(std::vector<Candidate> &heap, qint64 modifiedNsecs, qint64 position, const char *name)
{
    if (heap.size() == filesExamined) {
        if (modifiedNsecs <= heap.front().modifiedNsecs)
            return;
        std::pop_heap(heap.begin(), heap.end());
        heap.pop_back();
    }
    heap.push_back({modifiedNsecs, position, name});
    std::push_heap(heap.begin(), heap.end());
}

std::vector<Candidate> newestEntries(DIR *folder)
{
    std::vector<Candidate> heap;
    const int descriptor = ::dirfd(folder);
    errno = 0;
    for (qint64 position = 0; const dirent *each = ::readdir(folder); ++position) {
        if (const auto modified = modificationOfEntry(descriptor, each->d_name))
            keepNewest(heap, *modified, position, each->d_name);
        errno = 0;
    }
    if (errno != 0)
        return {};
    std::sort_heap(heap.begin(), heap.end());
    return heap;
}

bool isUsageEntry(int folder, const QByteArray &name, const QByteArray &domain)
{
    const auto file = RegularFile::open(name.constData(), folder);
    const auto head = file ? file->read(0, headLength) : std::nullopt;
    const auto key = head ? CacheEntry::keyOf(*head) : std::nullopt;
    return key && CacheEntry::isUsageKey(*key, domain);
}

} // namespace

QList<QByteArray> findUsageEntries(const QByteArray &path, const QByteArray &domain)
{
    QList<QByteArray> found;
    const Folder folder = openFolder(path);
    if (!folder)
        return found;
    for (const Candidate &each : newestEntries(folder.get())) {
        if (isUsageEntry(::dirfd(folder.get()), each.name, domain))
            found.append(path + '/' + each.name);
    }
    return found;
}

} // namespace nubble
