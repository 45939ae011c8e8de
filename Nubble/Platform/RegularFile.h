#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <ctime>
#include <optional>
#include <utility>

struct stat;

namespace nubble {

using FileTime = std::chrono::sys_time<std::chrono::nanoseconds>;

// What differs after every change of a file's bytes, or of the names in a folder.
struct FileState {
    quint64 inode = 0;
    qint64 size = 0;
    FileTime modified;
    FileTime changed; // which nobody can set

    bool operator==(const FileState &) const = default;
};

// Held within the range of the type: a file can claim any year.
[[nodiscard]] FileTime fileTimeOf(const timespec &time);

[[nodiscard]] FileState fileStateOf(const struct stat &info);
[[nodiscard]] std::optional<FileState> fileStateOf(const QByteArray &path); // of a folder, too

// A regular file opened for reading: never a FIFO, folder or device, and never one that blocks while it is
// opened. Reads are bounded by the caller. Every failure is an absent value. Any thread.
class RegularFile {
public:
    enum class Links { Followed, Refused };

    // `name` is taken relative to the open folder `folder` unless it is absolute.
    [[nodiscard]] static std::optional<RegularFile> open(
        const char *name, int folder, Links links = Links::Followed);
    [[nodiscard]] static std::optional<RegularFile> open(const QString &path);

    // One look at the file's attributes, without opening it.
    [[nodiscard]] static std::optional<FileState> stateOf(const char *path);
    [[nodiscard]] static std::optional<FileState> stateOf(const char *name, int folder);

    RegularFile(RegularFile &&other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1)), m_size(other.m_size),
          m_modified(other.m_modified)
    {
    }
    RegularFile &operator=(RegularFile &&) = delete;
    ~RegularFile();

    // As they were when it was opened.
    [[nodiscard]] qint64 size() const { return m_size; }
    [[nodiscard]] FileTime modified() const { return m_modified; }

    // Up to `length` bytes from `offset`: fewer only where the file ends.
    [[nodiscard]] std::optional<QByteArray> read(qint64 offset, qint64 length) const;

private:
    RegularFile(int descriptor, qint64 size, FileTime modified);

    int m_descriptor;
    qint64 m_size;
    FileTime m_modified;
};

} // namespace nubble
