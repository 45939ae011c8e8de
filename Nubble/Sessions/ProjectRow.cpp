#include "Sessions/ProjectRow.h"

#include <QPainter>

#include <algorithm>

#include "Sessions/SessionTexts.h"
#include "Sessions/StateColors.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/Palette.h"
#include "Widgets/Symbols.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr double iconSide = 15;
constexpr qsizetype longestToolTipText = 600;

QString helpText()
{
    return u"Bring this session forward"_s;
}

QString toolTipLine(const QString &text)
{
    if (text.size() <= longestToolTipText)
        return text;
    QString start = text.first(longestToolTipText - 1);
    if (start.back().isHighSurrogate())
        start.chop(1); // not half a character
    return start + u'…';
}

QString joined(QStringList parts, const QString &separator)
{
    parts.removeAll(QString());
    return parts.join(separator);
}

} // namespace

ProjectRow::ProjectRow(QWidget *parent) : QAbstractButton(parent), m_hover(this)
{
    setFocusPolicy(Qt::TabFocus);
}

void ProjectRow::setContent(const ProjectRowContent &content)
{
    if (m_content == content)
        return;
    m_content = content;
    describe();
    update();
}

void ProjectRow::describe()
{
    const QString help = isEnabled() ? helpText() : QString();
    setAccessibleName(u"%1, %2, %3"_s.arg(m_content.title, rowWord(m_content.state), m_content.elapsed));
    setAccessibleDescription(joined({toolTipLine(m_content.lastPrompt), help}, u". "_s));
    // The last prompt last: it is what may be cut off.
    QStringList lines{help, m_content.title, m_content.folder, m_content.lastPrompt};
    for (QString &line : lines)
        line = toolTipLine(line);
    setToolTip(joined(lines, u"\n"_s));
}

void ProjectRow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawBackground(painter);

    QRectF area = QRectF(rect()).adjusted(CardMetrics::rowPadding, 6, -CardMetrics::rowPadding, -6);
    const QRectF icon(area.left(), area.center().y() - iconSide / 2, iconSide, iconSide);
    Symbols::draw(painter, m_content.symbol, icon, Palette::textSecondary);
    area.setLeft(icon.right() + 9);
    area.setRight(area.right() - drawState(painter, area) - 10);
    drawTexts(painter, area);
}

void ProjectRow::drawBackground(QPainter &painter) const
{
    const QRectF area = QRectF(rect()).adjusted(1, 1, -1, -1);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_content.state == RunState::Waiting ? Palette::waitingRow : Qt::transparent);
    painter.drawRoundedRect(area, 10, 10);
    painter.setPen(hasFocus() ? QPen(Palette::focus, 1.5) : QPen(Qt::NoPen));
    painter.setBrush(m_hover.lifted(Qt::transparent, isDown()));
    painter.drawRoundedRect(area, 10, 10);
}

double ProjectRow::drawState(QPainter &painter, const QRectF &area) const
{
    const QRectF upper(area.left(), area.top(), area.width(), area.height() / 2);
    const QRectF lower = upper.translated(0, area.height() / 2);
    painter.setFont(Typography::cardBody());
    painter.setPen(colorOf(m_content.state));
    const QString word = rowWord(m_content.state);
    Typography::drawTabular(painter, upper, Qt::AlignRight, word);
    const double wordWidth = Typography::tabularWidth(painter, word);

    painter.setFont(Typography::caption());
    painter.setPen(Palette::textSecondary);
    Typography::drawTabular(painter, lower, Qt::AlignRight, m_content.elapsed);
    return std::max(wordWidth, Typography::tabularWidth(painter, m_content.elapsed));
}

void ProjectRow::drawTexts(QPainter &painter, const QRectF &area) const
{
    const QRectF upper(area.left(), area.top(), area.width(), area.height() / 2);
    const bool oneLine = m_content.lastPrompt.isEmpty();
    painter.setFont(Typography::rowTitle());
    painter.setPen(Palette::textPrimary);
    const auto elided = m_content.isTitleIdentifier ? Typography::Elided::Middle : Typography::Elided::End;
    Typography::drawElided(painter, oneLine ? area : upper, m_content.title, elided);
    if (oneLine)
        return;
    painter.setFont(Typography::cardBody());
    painter.setPen(Palette::textSecondary);
    Typography::drawElided(painter, upper.translated(0, area.height() / 2), m_content.lastPrompt);
}

} // namespace nubble
