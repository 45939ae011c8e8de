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
// the last time. Blocks; any thread, one call at a time.
class CacheScan {
public:
    CacheScan(QByteArray folder, QByteArray domain);

    // Absolute paths, newest first. None when the folder cannot be listed.
    [[nodiscard]] QList<QByteArray> usageEntries();

private:
    struct State { // differs after every change of a file's bytes
        quint64 inode = 0;
        qint64 size = 0;
        FileTime changed;

        bool operator==(const State &) const = default;
    };
    struct Verdict {
        State state;
        bool isUsage = false;
    };
    struct Candidate;

    static std::vector<Candidate> newestIn(DIR *folder);
    std::optional<bool> holdsUsage(int folder, const QByteArray &name) const;

    QByteArray m_folder;
    QByteArray m_domain;
    QHash<QByteArray, Verdict> m_verdicts; // of the last scan, by name
};

} // namespace nubble
