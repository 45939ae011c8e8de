#include "Meeting/MeetingTexts.h"

#include <QStringList>

#include <algorithm>

#include "Shell/OneLine.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

using Phase = MeetingState::Phase;

constexpr auto tabMark = "tab="_L1;

QString paddedTo2(qint64 number)
{
    return u"%1"_s.arg(number, 2, 10, QChar(u'0'));
}

QString activityText(const MeetingState &state, TimePoint now)
{
    if (state.phase == Phase::Finishing)
        return u" · writing final notes…"_s;
    if (state.updating)
        return u" · updating Doc now…"_s;
    if (!state.nextUpdate)
        return {};
    return u" · next update in "_s
        + clockText(std::chrono::ceil<std::chrono::seconds>(*state.nextUpdate - now));
}

QString lastUpdateText(const MeetingState &state, TimePoint now)
{
    if (!state.lastUpdate)
        return {};
    const auto minutes = std::chrono::floor<std::chrono::minutes>(now - *state.lastUpdate);
    return minutes < 1min ? u"\nDoc updated just now"_s
                          : u"\nDoc updated "_s + QString::number(minutes.count()) + u"m ago";
}

} // namespace

bool isDocLink(const QString &link)
{
    return link.contains("docs.google.com/document/d/"_L1);
}

bool isDocTabLink(const QString &link)
{
    return isDocLink(link) && link.contains(tabMark);
}

QString phaseName(Phase phase)
{
    switch (phase) {
    case Phase::Idle:
        return u"idle"_s;
    case Phase::Recording:
        return u"recording"_s;
    case Phase::Finishing:
        return u"finishing"_s;
    }
    return {};
}

QString phaseWord(const MeetingState &state)
{
    if (state.phase != Phase::Idle)
        return phaseName(state.phase);
    return state.others.isEmpty() ? u"off"_s : u"external"_s;
}

QString docLabel(const MeetingState &state)
{
    if (state.tabTitle)
        return oneLine(*state.tabTitle);
    if (!isDocTabLink(state.link))
        return u"No Doc yet"_s;
    return u"Doc tab "_s + oneLine(state.link.sliced(state.link.lastIndexOf(tabMark) + tabMark.size()));
}

QString statusText(const MeetingState &state)
{
    return oneLine(state.status);
}

QString linkHint(const MeetingState &state)
{
    return isDocTabLink(state.link)
        ? QString()
        : u"Copy the week's agenda tab link (it ends in ?tab=…), then Paste link."_s;
}

QString othersHint(const MeetingState &state)
{
    if (state.phase != Phase::Idle || state.others.isEmpty())
        return {};
    return u"A copy started outside the notch is running (pid "_s + pidList(state.others)
        + u"). Stop ends it.";
}

QString pidList(const QList<pid_t> &pids)
{
    QStringList texts;
    for (const pid_t pid : pids)
        texts.append(QString::number(pid));
    return texts.join(u", "_s);
}

QString clockText(std::chrono::seconds span)
{
    const qint64 seconds = std::max(span, 0s).count();
    const QString tail = paddedTo2(seconds % 60);
    if (seconds < 3600)
        return QString::number(seconds / 60) + u':' + tail;
    return QString::number(seconds / 3600) + u':' + paddedTo2(seconds / 60 % 60) + u':' + tail;
}

QString timingText(const MeetingState &state, TimePoint now)
{
    if (!state.startedAt)
        return {};
    return u"Recording "_s + clockText(std::chrono::floor<std::chrono::seconds>(now - *state.startedAt))
        + activityText(state, now) + lastUpdateText(state, now);
}

QString hearingText(float level)
{
    constexpr float speech = 0.15F;
    return level > speech ? u"Hearing speech"_s : u"Listening"_s;
}

QString buttonHelp(const MeetingState &state)
{
    const QString name = u"Meeting notes"_s;
    return state.isRunning() ? name + u" — " + phaseWord(state) : name;
}

} // namespace nubble
