#include "Sessions/SessionTexts.h"

#include "Shell/OneLine.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

QString lastPathComponent(const QString &path)
{
    const QString component = path.section(u'/', -1, -1, QString::SectionSkipEmpty);
    return component.isEmpty() && path.startsWith(u'/') ? u"/"_s : component;
}

// Claude Code marks the names that it makes up; one without a mark was given by the user.
bool isNamedByUser(const ClaudeSession &session)
{
    return !session.name.value_or(QString()).isEmpty() && session.nameSource != QStringView(u"derived");
}

} // namespace

QString rowTitle(const ClaudeSession &session, const SessionDetail &detail)
{
    const QString name = session.name.value_or(QString());
    if (detail.title && !isNamedByUser(session))
        return *detail.title;
    return name.isEmpty() ? oneLine(lastPathComponent(session.cwd)) : name;
}

bool isTitleIdentifier(const ClaudeSession &session, const SessionDetail &detail)
{
    return !detail.title && !isNamedByUser(session);
}

std::optional<QString> questionOf(const ClaudeSession &session, const SessionDetail &detail)
{
    if (!session.isWaiting())
        return std::nullopt;
    return detail.question ? detail.question : session.waitingFor;
}

QString rowWord(RunState state)
{
    return state == RunState::Completed ? u"done"_s : stateName(state);
}

QString rowSymbol(const ClaudeSession &session)
{
    return session.entrypoint == QStringView(u"claude-desktop") ? u"macwindow"_s : u"terminal"_s;
}

QString elapsedText(TimePoint since, TimePoint now)
{
    using namespace std::chrono;
    const milliseconds elapsed = now - since;
    if (elapsed < 1min)
        return u"just now"_s;
    if (elapsed < 1h)
        return QString::number(duration_cast<minutes>(elapsed).count()) + u"m ago";
    if (elapsed < days(1))
        return QString::number(duration_cast<hours>(elapsed).count()) + u"h ago";
    return QString::number(duration_cast<days>(elapsed).count()) + u"d ago";
}

QString stateName(RunState state)
{
    switch (state) {
    case RunState::Waiting:
        return u"waiting"_s;
    case RunState::Working:
        return u"working"_s;
    case RunState::Completed:
        return u"completed"_s;
    case RunState::Idle:
        return u"idle"_s;
    }
    Q_UNREACHABLE();
}

} // namespace nubble
