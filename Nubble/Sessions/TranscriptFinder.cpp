#include "Sessions/TranscriptFinder.h"

#include <QFile>

#include <dirent.h>
#include <memory>
#include <string_view>

using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto searchInterval = 3s;

// The id becomes a file name, and must not lead anywhere else.
bool isFileName(const QString &id)
{
    return !id.isEmpty() && id != QLatin1String(".") && id != QLatin1String("..") && !id.contains(u'/')
        && !id.contains(QChar::Null);
}

} // namespace

QString projectFolderName(const QString &cwd)
{
    QString name;
    for (const uint character : cwd.toUcs4()) {
        if (QChar::isLetter(character) || QChar::isDigit(character))
            name += QChar::fromUcs4(character);
        else
            name += u'-';
    }
    return name;
}

TranscriptFinder::TranscriptFinder(const QStringList &projectsFolders, FileCosts &costs) : m_costs(costs)
{
    for (const QString &folder : projectsFolders)
        m_projects.append(QFile::encodeName(folder));
}

void TranscriptFinder::startPass(TimePoint now, bool force)
{
    m_folders.reset();
    const bool clockWentBack = now < m_searchedAt;
    if (!force && !clockWentBack && now - m_searchedAt < searchInterval)
        return;
    m_searched.clear();
    m_searchedAt = now;
}

std::optional<FoundTranscript> TranscriptFinder::find(const ClaudeSession &session)
{
    const QList<QByteArray> expected = expectedPaths(session);
    for (const QByteArray &path : expected)
        if (auto found = at(path))
            return found;
    if (expected.isEmpty() || m_searched.contains(session.sessionId))
        return std::nullopt;
    const QByteArray file = expected.first().sliced(expected.first().lastIndexOf('/'));
    for (const QByteArray &folder : folders())
        if (auto found = at(folder + file))
            return found;
    m_searched.insert(session.sessionId);
    return std::nullopt;
}

QList<QByteArray> TranscriptFinder::expectedPaths(const ClaudeSession &session) const
{
    if (!isFileName(session.sessionId))
        return {};
    const QByteArray own = QFile::encodeName(session.folder) + "/projects";
    QList<QByteArray> paths;
    for (const QByteArray &projects : m_projects)
        paths.insert(
            projects == own ? 0 : paths.size(),
            projects + '/' + QFile::encodeName(projectFolderName(session.cwd)) + '/'
                + QFile::encodeName(session.sessionId) + ".jsonl");
    return paths;
}

std::optional<FoundTranscript> TranscriptFinder::at(const QByteArray &path)
{
    const auto state = stateOf(path);
    return state ? std::optional(FoundTranscript{path, *state}) : std::nullopt;
}

std::optional<FileState> TranscriptFinder::stateOf(const QByteArray &path)
{
    ++m_costs.attributeReads;
    return RegularFile::stateOf(path.constData());
}

const QList<QByteArray> &TranscriptFinder::folders()
{
    if (!m_folders) {
        m_folders.emplace();
        for (const QByteArray &projects : m_projects)
            list(projects);
    }
    return *m_folders;
}

void TranscriptFinder::list(const QByteArray &projects)
{
    ++m_costs.listings;
    const std::unique_ptr<DIR, int (*)(DIR *)> listing(::opendir(projects.constData()), &::closedir);
    while (const dirent *entry = listing ? ::readdir(listing.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        if (entry->d_type != DT_REG && name != "." && name != "..")
            m_folders->append(projects + '/' + entry->d_name);
    }
}

} // namespace nubble
