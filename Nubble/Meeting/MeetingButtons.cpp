#include "Meeting/MeetingButtons.h"

#include <algorithm>

#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int pillHeight = 32;
constexpr double padding = 9;

QString startTitle()
{
    return u"Start recording"_s;
}

QString updateTitle()
{
    return u"Update now"_s;
}

} // namespace

BigButton::BigButton(QWidget *parent) : PillButton(startTitle(), parent)
{
    setMeasures(pillHeight, padding);
    setAccent(Palette::recording);
    show(false, false);
}

void BigButton::show(bool running, bool finishing)
{
    setSymbol(running ? u"stop.fill"_s : u"record.circle"_s);
    setTitle(finishing ? u"Finishing…"_s : running ? u"Stop"_s : startTitle());
    setHelpText(
        running ? u"Stop: transcribe the rest and write the final notes"_s
                : u"Start recording the mic into this Doc tab"_s);
    setEnabled(!finishing);
}

int BigButton::widest() const
{
    return widthFor(startTitle());
}

UpdateNowButton::UpdateNowButton(QWidget *parent) : PillButton(updateTitle(), parent)
{
    setMeasures(pillHeight, padding);
    setHelpText(u"Transcribe what's been said so far and write it into the Doc now"_s);
    show(false, false);
}

void UpdateNowButton::show(bool updating, bool enabled)
{
    setSymbol(updating ? u"arrow.triangle.2.circlepath"_s : u"paperplane.fill"_s);
    setTitle(updating ? u"Updating…"_s : updateTitle());
    setEnabled(enabled);
}

int UpdateNowButton::widest() const
{
    return widthFor(updateTitle());
}

SmallButton::SmallButton(const QString &title, QWidget *parent) : PillButton(title, parent)
{
    setFont(Typography::cardBody());
    setMeasures(24, 10);
}

} // namespace nubble
