#pragma once

#include <optional>
#include <sys/stat.h>

#include "Platform/RegularFile.h"

namespace nubble {

// What differs after every change of a file's bytes, or of the names in a folder.
struct FileState {
    quint64 inode = 0;
    qint64 size = 0;
    FileTime modified;
    FileTime changed; // which nobody can set

    bool operator==(const FileState &) const = default;
};

[[nodiscard]] inline FileState fileStateOf(const struct stat &info)
{
    return {info.st_ino, info.st_size, fileTimeOf(info.st_mtim), fileTimeOf(info.st_ctim)};
}

// One look at it, without opening it; absent when there is none.
[[nodiscard]] inline std::optional<FileState> fileStateOf(const QByteArray &path)
{
    struct stat info { };
    return ::stat(path.constData(), &info) == 0 ? std::optional(fileStateOf(info)) : std::nullopt;
}

} // namespace nubble
