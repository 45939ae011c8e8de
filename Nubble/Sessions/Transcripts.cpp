#include "Sessions/Transcripts.h"

#include <QSet>

#include <array>

#include "Platform/Logging.h"

namespace nubble {

Transcripts::Transcripts(const QStringList &projectsFolders) : m_finder(projectsFolders, m_costs) { }

QHash<QString, SessionDetail> Transcripts::update(
    const QList<ClaudeSession> &sessions, bool force, TimePoint now, const std::stop_token &stop)
{
    m_finder.startPass(now, force);
    QSet<QString> ids;
    for (const ClaudeSession &session : sessions) {
        if (stop.stop_requested())
            break;
        if (!ids.contains(session.sessionId))
            note(session.sessionId, updateOne(session, force));
        ids.insert(session.sessionId);
    }
    m_transcripts.removeIf([&ids](const auto &each) { return !ids.contains(each.key()); });
    m_gaps.removeIf([&ids](const auto &each) { return !ids.contains(each.key()); });

    QHash<QString, SessionDetail> details;
    for (const ClaudeSession &session : sessions)
        if (const auto known = m_transcripts.constFind(session.sessionId);
            known != m_transcripts.cend() && known->reader.hasRead())
            addDetail(details[session.sessionId], known->reader.detail(), session);
    return details;
}

// What changes with each line is left out where nobody asks for it.
void Transcripts::addDetail(SessionDetail &told, const SessionDetail &known, const ClaudeSession &session)
{
    told.title = known.title;
    told.lastPrompt = known.lastPrompt;
    if (session.isWaiting())
        told.question = known.question;
    if (!session.tellsStatus())
        told.work = known.work;
}

QList<WatchedEntries> Transcripts::places(const QList<ClaudeSession> &sessions) const
{
    QList<WatchedEntries> places;
    for (const ClaudeSession &session : sessions) {
        const auto known = m_transcripts.constFind(session.sessionId);
        const auto paths =
            known == m_transcripts.cend() ? m_finder.expectedPaths(session) : QList{known->path};
        for (const QByteArray &path : paths) {
            const qsizetype slash = path.lastIndexOf('/');
            places.append({path.first(slash), path.sliced(slash + 1)});
        }
    }
    return places;
}

void Transcripts::note(const QString &id, Gap gap)
{
    Gap &known = m_gaps[id];
    if (known == gap)
        return;
    known = gap;
    constexpr std::array reasons{
        "has its transcript", "has no transcript yet", "has one that cannot be read"};
    qCDebug(logSessions) << "session" << id << reasons.at(static_cast<size_t>(gap));
}

Transcripts::Gap Transcripts::updateOne(const ClaudeSession &session, bool force)
{
    auto known = m_transcripts.find(session.sessionId);
    auto state = known == m_transcripts.end() ? std::nullopt : m_finder.stateOf(known->path);
    if (!state) {
        const auto found = m_finder.find(session);
        if (!found)
            return Gap::NotFound;
        if (known == m_transcripts.end() || known->path != found->path)
            known = m_transcripts.insert(session.sessionId, {.path = found->path, .state = {}, .reader = {}});
        state = found->state;
    }
    if (!force && known->reader.hasRead() && *state == known->state)
        return Gap::None;
    if (!known->reader.read(known->path, m_costs))
        return Gap::Unreadable;
    known->state = *state;
    return Gap::None;
}

} // namespace nubble
