#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>

#include <dirent.h>
#include <optional>
#include <vector>

#include "Platform/RegularFile.h"

namespace nubble {

// Finds the files in a cache folder that hold answers to usage requests made at `domain`. Looks into the 600
// newest files that can be entries, however many there are, and again only into those that have changed since
// the last time. A folder in which no file has come or gone is listed once more, because the newest may have
// been without its key so far, and then no further: a file is named by its key, and keeps it. Blocks; any
// thread, one call at a time.
class CacheScan {
public:
    CacheScan(QByteArray folder, QByteArray domain);

    // Absolute paths, newest first when they were listed. None when the folder cannot be listed.
    [[nodiscard]] QList<QByteArray> usageEntries();

    void forget(); // has the folder listed by the next call

private:
    struct Verdict {
        FileState state;
        bool isUsage = false;
    };
    struct Candidate;

    static std::optional<std::vector<Candidate>> newestIn(DIR *folder);
    std::optional<bool> holdsUsage(int folder, const QByteArray &name) const;
    bool list(DIR *folder);

    QByteArray m_folder;
    QByteArray m_domain;
    QHash<QByteArray, Verdict> m_verdicts;  // of the last listing, by name
    QList<QByteArray> m_found;              // by it
    std::optional<FileState> m_folderState; // before it
    bool m_settled = false;                 // whether the one before found the folder in that state, too
};

} // namespace nubble
