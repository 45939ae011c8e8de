#include "Review/QuenwickRow.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QTextLayout>

#include <algorithm>
#include <array>
#include <cmath>

#include "Review/Avatar.h"
#include "Shell/OneLine.h"
#include "Widgets/CardMetrics.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"
#include "Widgets/Spinner.h"
#include "Widgets/Symbols.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int padding = CardMetrics::rowPadding;
constexpr int above = 8;
constexpr int textLeft = padding + Avatar::side + 9;
constexpr int rowWidth =
    CardMetrics::width - CardMetrics::rowMargins.left() - CardMetrics::rowMargins.right();
constexpr int textWidth = rowWidth - textLeft - padding;
constexpr int mostQuoteLines = 2;
constexpr double actionSide = 24;
constexpr int actionsGap = 6;
constexpr double dimmed = 0.4;

constexpr std::array allActions{ReviewAction::Approve, ReviewAction::Dismiss, ReviewAction::Calendar};

Qt::Key actionKey(ReviewAction action)
{
    switch (action) {
    case ReviewAction::Approve:
        return Qt::Key_A;
    case ReviewAction::Dismiss:
        return Qt::Key_D;
    case ReviewAction::Calendar:
        break;
    }
    return Qt::Key_C;
}

// A circular button with a symbol.
class IconAction : public NotchButton {
public:
    IconAction(ReviewAction action, QWidget *parent)
        : NotchButton(actionSymbol(action), actionName(action), parent)
    {
        setSide(actionSide);
    }
};

int lineHeight(const QFont &font)
{
    return static_cast<int>(std::ceil(QFontMetricsF(font).lineSpacing()));
}

QString elided(const QString &text, const QFont &font)
{
    return Typography::elidedLine(font, text, textWidth);
}

// The last line that there is room for takes the rest, cut off.
QStringList wrapped(const QString &text, const QFont &font)
{
    QTextLayout layout(text, font);
    QTextOption option(Qt::AlignLeft);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QStringList lines;
    for (QTextLine line = layout.createLine(); line.isValid() && !text.isEmpty();
         line = layout.createLine()) {
        line.setLineWidth(textWidth);
        if (lines.size() + 1 == mostQuoteLines) {
            lines.append(elided(text.sliced(line.textStart()), font));
            break;
        }
        lines.append(text.sliced(line.textStart(), line.textLength()).trimmed());
    }
    layout.endLayout();
    return lines;
}

} // namespace

struct QuenwickRow::Line {
    QString text;
    QFont font;
    QColor colour;
    QString symbol{};
    double indent = 0;
};

QuenwickRow::QuenwickRow(const QuenwickItem &item, bool soon, QWidget *parent)
    : QWidget(parent), m_item(item), m_soon(soon),
      m_quote(wrapped(oneLine(quoteOf(item)), Typography::cardBody())), m_actions(new QWidget(this)),
      m_spinner(new Spinner(16, this)), m_hover(this)
{
    setFocusPolicy(Qt::TabFocus);
    auto *row = new QHBoxLayout(m_actions);
    row->setContentsMargins({});
    row->setSpacing(Units::px(this, actionsGap));
    for (const ReviewAction action : allActions)
        if (action != ReviewAction::Calendar || !item.onCalendar)
            row->addWidget(addAction(action));
    row->addStretch();
    m_spinner->hide();
    setFixedHeight(sizeHint().height());
    const int side = Units::px(this, actionSide);
    m_actions->setGeometry(
        Units::px(this, textLeft), height() - Units::px(this, above) - side, Units::px(this, textWidth),
        side);
    m_spinner->move(m_actions->x(), m_actions->geometry().center().y() - m_spinner->height() / 2);
    describe();
}

NotchButton *QuenwickRow::addAction(ReviewAction action)
{
    auto *button = new IconAction(action, m_actions);
    connect(button, &QAbstractButton::clicked, this, [this, action] { Q_EMIT actionWanted(action); });
    m_buttons.insert(action, button);
    return button;
}

void QuenwickRow::setDue(const QString &due)
{
    if (m_due == due)
        return;
    m_due = due;
    describe();
    update();
}

void QuenwickRow::setLive(bool live)
{
    for (auto each = m_buttons.constBegin(); each != m_buttons.constEnd(); ++each)
        each.value()->setHelpText(actionHelp(each.key(), live));
}

void QuenwickRow::setBusy(bool busy, bool motionReduced)
{
    m_busy = busy;
    m_spinner->setMotionReduced(motionReduced);
    m_spinner->setVisible(busy);
    m_actions->setVisible(!busy);
    describe();
    update();
}

// Whoever reads a screen hears in one piece what the row says.
void QuenwickRow::describe()
{
    QStringList parts{oneLine(m_item.who), m_due, oneLine(m_item.title)};
    if (m_item.onCalendar)
        parts.append(onCalendarText());
    parts.removeAll(QString());
    setAccessibleName(parts.join(u", "_s));
    setAccessibleDescription(m_busy ? u"Busy"_s : m_quote.join(u' '));
}

QList<QuenwickRow::Line> QuenwickRow::lines() const
{
    const QFont body = Typography::cardBody();
    const QFont small = Typography::caption();
    QList<Line> result{
        {elided(oneLine(m_item.who), Typography::rowTitle()), Typography::rowTitle(), Palette::textPrimary}};
    if (m_item.due)
        result.append({m_due, small, m_soon ? Palette::quenwickText : Palette::textSecondary});
    if (const QString title = oneLine(m_item.title); !title.isEmpty())
        result.append({elided(title, body), body, Palette::textPrimary});
    const auto widthOf = [&body](const QString &line) { return QFontMetricsF(body).horizontalAdvance(line); };
    double widest = 0;
    for (const QString &line : m_quote)
        widest = std::max(widest, widthOf(line));
    for (const QString &line : m_quote) // begin below one another, whichever way they are written
        result.append(
            {line, body, Palette::textSecondary, {}, line.isRightToLeft() ? widest - widthOf(line) : 0});
    if (m_item.onCalendar)
        result.append({onCalendarText(), small, Palette::textSecondary, onCalendarSymbol()});
    return result;
}

QSize QuenwickRow::sizeHint() const
{
    double height = 2 * above + actionsGap + actionSide;
    for (const Line &line : lines())
        height += lineHeight(line.font);
    return Units::px(this, QSizeF(rowWidth, height));
}

void QuenwickRow::paintEvent(QPaintEvent *)
{
    UnitPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(hasFocus() ? QPen(Palette::focus, 1.5) : QPen(Qt::NoPen));
    painter.setBrush(m_busy ? QColor(Qt::transparent) : m_hover.lifted(Qt::transparent, false));
    painter.drawRoundedRect(painter.area().adjusted(1, 1, -1, -1), 10, 10);
    painter.setOpacity(m_busy ? dimmed : 1);
    Avatar::draw(painter, QPointF(padding, above + 1), initialOf(m_item.who));
    QRectF area(textLeft, above, textWidth, 0);
    for (const Line &line : lines()) {
        area.setHeight(lineHeight(line.font));
        painter.setFont(line.font);
        painter.setPen(line.colour);
        double indent = line.indent;
        if (!line.symbol.isEmpty()) {
            constexpr double side = 11;
            Symbols::draw(
                painter, line.symbol, QRectF(area.left(), area.center().y() - side / 2, side, side),
                line.colour);
            indent = side + 5;
        }
        Typography::drawElided(painter, area.adjusted(indent, 0, 0, 0), line.text);
        area.translate(0, area.height());
    }
}

void QuenwickRow::keyPressEvent(QKeyEvent *event)
{
    const bool isUp = event->key() == Qt::Key_Up;
    if (isUp || event->key() == Qt::Key_Down) {
        Q_EMIT moveWanted(isUp ? -1 : 1);
        return;
    }
    const auto action = std::find_if(allActions.begin(), allActions.end(), [event](ReviewAction each) {
        return actionKey(each) == event->key();
    });
    const bool isPlain = event->modifiers() == Qt::NoModifier && !event->isAutoRepeat();
    if (!m_busy && isPlain && action != allActions.end() && m_buttons.contains(*action))
        Q_EMIT actionWanted(*action);
    else
        QWidget::keyPressEvent(event);
}

void QuenwickRow::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    update();
}

void QuenwickRow::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    update();
}

} // namespace nubble
