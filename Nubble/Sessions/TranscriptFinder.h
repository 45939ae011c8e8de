#pragma once

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QStringList>

#include <optional>

#include "Platform/Clock.h"
#include "Platform/RegularFile.h"
#include "Sessions/ClaudeSession.h"
#include "Sessions/FileCosts.h"

namespace nubble {

struct FoundTranscript {
    QByteArray path;
    FileState state;
};

// The folder below the projects folder where the transcripts of sessions working in `cwd` are looked for
// first. Pure.
[[nodiscard]] QString projectFolderName(const QString &cwd);

// Finds transcripts: in the folders named after the session's working directory, else in any project folder.
// Blocks; one thread at a time. A session without a transcript is looked for in all folders every three
// seconds only.
class TranscriptFinder {
public:
    TranscriptFinder(const QStringList &projectsFolders, FileCosts &costs);

    void startPass(TimePoint now, bool force); // `force` looks in all folders anyhow
    [[nodiscard]] std::optional<FoundTranscript> find(const ClaudeSession &session);
    [[nodiscard]] std::optional<FileState> stateOf(const QByteArray &path);
    // Beside the session's record first, since a whole folder may have been copied. None for no real id.
    [[nodiscard]] QList<QByteArray> expectedPaths(const ClaudeSession &session) const;

private:
    [[nodiscard]] std::optional<FoundTranscript> at(const QByteArray &path);
    [[nodiscard]] const QList<QByteArray> &folders();
    void list(const QByteArray &projects);

    QList<QByteArray> m_projects;
    FileCosts &m_costs;
    std::optional<QList<QByteArray>> m_folders; // of this pass
    QSet<QString> m_searched;                   // ids that were in no folder at the last search
    TimePoint m_searchedAt;
};

} // namespace nubble
