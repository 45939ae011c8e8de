#pragma once

#include <QByteArray>
#include <QString>

#include <ctime>
#include <optional>
#include <utility>

namespace nubble {

// What tells whether a file has changed.
struct FileStamp {
    qint64 modifiedNsecs = 0; // since 1970
    qint64 size = 0;

    bool operator==(const FileStamp &) const = default;
};

// Since 1970, held within the range of the type: a file can claim any year.
[[nodiscard]] qint64 nsecsSinceEpoch(const timespec &time);

// A regular file opened for reading: never a FIFO, folder or device, and never one that blocks while it is
// opened. Reads are bounded by the caller. Every failure is an absent value. Any thread.
class RegularFile {
public:
    // `name` is taken relative to the open folder `folder` unless it is absolute.
    [[nodiscard]] static std::optional<RegularFile> open(const char *name, int folder);
    [[nodiscard]] static std::optional<RegularFile> open(const QString &path);

    // One look at the file's attributes, without opening it.
    [[nodiscard]] static std::optional<FileStamp> stampOf(const char *path);

    RegularFile(RegularFile &&other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1)), m_size(other.m_size),
          m_modifiedNsecs(other.m_modifiedNsecs)
    {
    }
    RegularFile &operator=(RegularFile &&) = delete;
    ~RegularFile();

    [[nodiscard]] qint64 size() const { return m_size; }                   // when it was opened
    [[nodiscard]] qint64 modifiedNsecs() const { return m_modifiedNsecs; } // since 1970, when it was opened

    // Up to `length` bytes from `offset`: fewer only where the file ends.
    [[nodiscard]] std::optional<QByteArray> read(qint64 offset, qint64 length) const;

private:
    RegularFile(int descriptor, qint64 size, qint64 modifiedNsecs);

    int m_descriptor;
    qint64 m_size;
    qint64 m_modifiedNsecs;
};

} // namespace nubble
