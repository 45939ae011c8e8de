#include "Sessions/ProjectRow.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>

#include "Sessions/SessionTexts.h"
#include "Sessions/StateColors.h"
#include "Shell/OneLine.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"
#include "Widgets/Symbols.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr double iconSide = 15;
constexpr qsizetype longestToolTipText = 600;
constexpr auto reasonTime = 5s;

QString helpText()
{
    return u"Bring this session forward"_s;
}

QString joined(QStringList parts, const QString &separator)
{
    parts.removeAll(QString());
    return parts.join(separator);
}

} // namespace

QString ProjectRowContent::heading() const
{
    return joined({terminal, title}, u" · "_s);
}

ProjectRow::ProjectRow(QWidget *parent)
    : QAbstractButton(parent),
      m_copy(new NotchButton(u"doc.on.doc"_s, u"Copy the command that attaches it"_s, this)), m_hover(this)
{
    setFocusPolicy(Qt::TabFocus);
    m_copy->hide();
    connect(m_copy, &NotchButton::clicked, this, &ProjectRow::copyCommand);
    connect(&m_reasonTime, &QTimer::timeout, this, &ProjectRow::endReason);
}

void ProjectRow::setContent(const ProjectRowContent &content)
{
    if (m_content == content)
        return;
    m_content = content;
    describe();
    update();
}

void ProjectRow::showReason(const QString &reason, const QString &command)
{
    if (m_copy->hasFocus() && command.isEmpty())
        setFocus();
    m_reason = reason;
    m_command = command;
    m_copy->setVisible(!command.isEmpty());
    describe();
    update();
    if (reason.isEmpty()) {
        m_reasonTime.stop();
        return;
    }
    m_reasonTime.start(reasonTime);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

QWidgetList ProjectRow::tabStops()
{
    return {this, m_copy};
}

// Whoever is about to copy the command has as long as that takes.
void ProjectRow::endReason()
{
    if (m_copy->isHidden() || !(m_copy->hasFocus() || underMouse()))
        showReason({});
}

void ProjectRow::copyCommand()
{
    QGuiApplication::clipboard()->setText(m_command);
    showReason(u"Copied the command"_s);
}

const QString &ProjectRow::secondLine() const
{
    return m_reason.isEmpty() ? m_content.lastPrompt : m_reason;
}

void ProjectRow::resizeEvent(QResizeEvent *)
{
    const int side = Units::px(this, rowHeight);
    const QRect place(width() - side, 0, side, height());
    m_copy->place(place, QRectF(place).center());
}

void ProjectRow::describe()
{
    const QString help = isEnabled() ? helpText() : QString();
    setAccessibleName(u"%1, %2, %3"_s.arg(m_content.heading(), rowWord(m_content.state), m_content.elapsed));
    setAccessibleDescription(joined({shortened(secondLine(), longestToolTipText), help}, u". "_s));
    // The last prompt last: it is what may be cut off.
    QStringList lines{help, m_content.heading(), m_content.folder, secondLine()};
    for (QString &line : lines)
        line = shortened(line, longestToolTipText);
    setToolTip(joined(lines, u"\n"_s));
}

void ProjectRow::paintEvent(QPaintEvent *)
{
    UnitPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawBackground(painter, painter.area());

    QRectF area = painter.area().adjusted(CardMetrics::rowPadding, 6, -CardMetrics::rowPadding, -6);
    const QRectF icon(area.left(), area.center().y() - iconSide / 2, iconSide, iconSide);
    Symbols::draw(painter, m_content.symbol, icon, Palette::textSecondary);
    area.setLeft(icon.right() + 9);
    if (m_copy->isVisible())
        area.setRight(painter.area().right() - rowHeight);
    drawTexts(painter, area);
}

void ProjectRow::drawBackground(QPainter &painter, const QRectF &row) const
{
    const QRectF area = row.adjusted(1, 1, -1, -1);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_content.state == RunState::Waiting ? Palette::waitingRow : Qt::transparent);
    painter.drawRoundedRect(area, 10, 10);
    painter.setPen(hasFocus() ? QPen(Palette::focus, 1.5) : QPen(Qt::NoPen));
    painter.setBrush(m_hover.lifted(Qt::transparent, isDown()));
    painter.drawRoundedRect(area, 10, 10);
}

// Behind the last prompt, so that the title has the whole width above, or in its place. Returns where it
// begins.
double ProjectRow::drawState(QPainter &painter, QRectF line) const
{
    painter.setFont(Typography::caption());
    const QString word = rowWord(m_content.state);
    const QString elapsed = u" · "_s + m_content.elapsed;
    const double wordWidth = Typography::tabularWidth(painter, word);
    const double width = wordWidth + Typography::tabularWidth(painter, elapsed);
    if (!m_content.lastPrompt.isEmpty())
        line.setLeft(line.right() - width);
    painter.setPen(colorOf(m_content.state));
    Typography::drawTabular(painter, line, Qt::AlignLeft, word);
    painter.setPen(Palette::textSecondary);
    Typography::drawTabular(painter, line.adjusted(wordWidth, 0, 0, 0), Qt::AlignLeft, elapsed);
    return line.left();
}

void ProjectRow::drawTexts(QPainter &painter, const QRectF &area) const
{
    const QRectF upper(area.left(), area.top(), area.width(), area.height() / 2);
    painter.setFont(Typography::rowTitle());
    painter.setPen(Palette::textPrimary);
    const auto elided = m_content.isTitleIdentifier ? Typography::Elided::Middle : Typography::Elided::End;
    Typography::drawElided(painter, upper, m_content.heading(), elided);

    QRectF lower = upper.translated(0, area.height() / 2);
    if (m_reason.isEmpty()) // which has the whole line
        lower.setRight(drawState(painter, lower) - 8);
    painter.setFont(Typography::cardBody());
    painter.setPen(Palette::textSecondary);
    Typography::drawElided(painter, lower, secondLine());
}

} // namespace nubble
