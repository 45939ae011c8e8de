#pragma once

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>

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

// Finds transcripts: in the folder named after the session's working directory, else in any project folder.
// Blocks; one thread at a time. A session without a transcript is looked for in all folders every three
// seconds only.
class TranscriptFinder {
public:
    TranscriptFinder(const QString &projectsFolder, FileCosts &costs);

    void startPass(TimePoint now, bool force); // `force` looks in all folders anyhow
    [[nodiscard]] std::optional<FoundTranscript> find(const ClaudeSession &session);
    [[nodiscard]] std::optional<FileState> stateOf(const QByteArray &path);
    [[nodiscard]] QByteArray expectedPath(const ClaudeSession &session) const; // empty for an id that is none

private:
    [[nodiscard]] std::optional<FoundTranscript> at(const QByteArray &path);
    [[nodiscard]] const QList<QByteArray> &folders();

    QByteArray m_projects;
    FileCosts &m_costs;
    std::optional<QList<QByteArray>> m_folders; // in the order of the listing; of this pass
    QSet<QString> m_searched;                   // ids that were in no folder at the last search
    TimePoint m_searchedAt;
};

} // namespace nubble
