#pragma once

#include <QHash>
#include <QList>

#include <stop_token>

#include "Platform/FolderWatch.h"
#include "Sessions/ClaudeSession.h"
#include "Sessions/SessionDetail.h"
#include "Sessions/TranscriptFinder.h"
#include "Sessions/TranscriptReader.h"

namespace nubble {

// The transcripts of the live sessions, each read only when it has changed and only as far as it has grown.
// Blocks; one thread at a time. A transcript that cannot be read keeps the details it had and is tried again
// at the next update.
class Transcripts {
public:
    explicit Transcripts(const QStringList &projectsFolders);
    Q_DISABLE_COPY_MOVE(Transcripts)

    // The details of those of `sessions` that have a transcript. An unchanged transcript costs one look at
    // its attributes.
    QHash<QString, SessionDetail> update(
        const QList<ClaudeSession> &sessions, bool force, TimePoint now, const std::stop_token &stop = {});

    // Where they are, or are looked for first.
    [[nodiscard]] QList<WatchedEntries> places(const QList<ClaudeSession> &sessions) const;

    [[nodiscard]] const FileCosts &costs() const { return m_costs; } // since it was constructed

private:
    struct Transcript {
        QByteArray path;
        FileState state;
        TranscriptReader reader;
    };

    // Why a session's details are not up to date; for the log.
    enum class Gap { None, NotFound, Unreadable };

    static void addDetail(SessionDetail &told, const SessionDetail &known, const ClaudeSession &session);
    Gap updateOne(const ClaudeSession &session, bool force);
    void note(const QString &id, Gap gap);

    FileCosts m_costs;
    TranscriptFinder m_finder;
    QHash<QString, Transcript> m_transcripts; // by session id
    QHash<QString, Gap> m_gaps;               // likewise
};

} // namespace nubble
