#include "Sessions/SessionTexts.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

QString lastPathComponent(const QString &path)
{
    const QString component = path.section(u'/', -1, -1, QString::SectionSkipEmpty);
    return component.isEmpty() && path.startsWith(u'/') ? u"/"_s : component;
}

} // namespace

QString rowTitle(const ClaudeSession &session, const SessionDetail &detail)
{
    const QString name = session.name.value_or(QString());
    const bool isDerived = session.nameSource.value_or(u"derived"_s) == "derived"_L1;
    if (!name.isEmpty() && !isDerived)
        return name;
    if (detail.title)
        return *detail.title;
    return name.isEmpty() ? lastPathComponent(session.cwd) : name;
}

QString rowWord(RunState state)
{
    return state == RunState::Completed ? u"done"_s : stateName(state);
}

QString rowSymbol(const ClaudeSession &session)
{
    return session.entrypoint == QStringView(u"claude-desktop") ? u"macwindow"_s : u"terminal"_s;
}

QString elapsedText(double sinceMsecs, qint64 nowMsecs)
{
    constexpr double minute = 60, hour = 3600, day = 86400, farthest = 1e12; // seconds
    const double seconds = std::min((static_cast<double>(nowMsecs) - sinceMsecs) / 1000, farthest);
    if (!(seconds >= minute))
        return u"just now"_s;
    if (seconds < hour)
        return QString::number(static_cast<qint64>(seconds / minute)) + u"m ago";
    if (seconds < day)
        return QString::number(static_cast<qint64>(seconds / hour)) + u"h ago";
    return QString::number(static_cast<qint64>(seconds / day)) + u"d ago";
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
