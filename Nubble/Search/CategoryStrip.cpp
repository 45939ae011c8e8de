#include "Search/CategoryStrip.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QLinearGradient>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

#include "Search/ChatTexts.h"
#include "Widgets/HoverLift.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int chipHeight = 24;
constexpr int chipPadding = 10;
constexpr int countGap = 5;
constexpr int widestName = 180;
constexpr qsizetype mostChips = 100; // nobody finds one among more
constexpr int side = 19;
constexpr int fadeWidth = 24;

class Chip : public QAbstractButton {
public:
    Chip(const QString &name, qint64 count, QWidget *parent)
        : QAbstractButton(parent), m_count(count > 0 ? QString::number(count) : QString()), m_hover(this)
    {
        const QFontMetrics metrics(Typography::cardBody());
        setText(metrics.elidedText(name, Qt::ElideRight, widestName));
        setToolTip(text() == name ? QString() : name.toHtmlEscaped());
        setAccessibleName(m_count.isEmpty() ? name : u"%1, %2"_s.arg(name, m_count));
        setCheckable(true);
        setFocusPolicy(Qt::TabFocus);
        setCursor(Qt::PointingHandCursor);
        const int countWidth = m_count.isEmpty() ? 0 : countGap + metrics.horizontalAdvance(m_count);
        setFixedSize(metrics.horizontalAdvance(text()) + countWidth + 2 * chipPadding, chipHeight);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(hasFocus() ? QPen(Palette::focus, 1.5) : QPen(Qt::NoPen));
        painter.setBrush(isChecked() ? Palette::chosen : m_hover.lifted(Palette::control, isDown()));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), chipHeight / 2.0, chipHeight / 2.0);
        painter.setFont(Typography::cardBody());
        const QRect inside = rect().adjusted(chipPadding, 0, -chipPadding, 0);
        painter.setPen(isChecked() ? Palette::textPrimary : Palette::textSecondary);
        painter.drawText(inside, Qt::AlignLeft | Qt::AlignVCenter, text());
        painter.setPen(Palette::textSecondary);
        painter.drawText(inside, Qt::AlignRight | Qt::AlignVCenter, m_count);
    }

private:
    QString m_count;
    HoverLift m_hover;
};

// Tells that there is more in that direction.
class Fade : public QWidget {
public:
    Fade(bool atLeft, QWidget *parent) : QWidget(parent), m_atLeft(atLeft)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QLinearGradient gradient(m_atLeft ? 0 : width(), 0, m_atLeft ? width() : 0, 0);
        QColor clear(Palette::card.rgb());
        gradient.setColorAt(0, clear);
        clear.setAlpha(0);
        gradient.setColorAt(1, clear);
        QPainter(this).fillRect(rect(), gradient);
    }

private:
    bool m_atLeft;
};

} // namespace

CategoryStrip::CategoryStrip(QWidget *parent)
    : QScrollArea(parent), m_row(new QWidget), m_layout(new QHBoxLayout(m_row)),
      m_leftFade(new Fade(true, this)), m_rightFade(new Fade(false, this))
{
    setAccessibleName(u"Categories"_s);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFixedHeight(chipHeight + 8);
    viewport()->setAutoFillBackground(false);
    m_row->setAutoFillBackground(false);
    m_layout->setContentsMargins(side, 0, side, 8);
    m_layout->setSpacing(6);
    m_layout->setSizeConstraint(QLayout::SetFixedSize);
    setWidget(m_row);
    m_row->setAutoFillBackground(false); // which the area has switched on
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, &CategoryStrip::placeFades);
    connect(horizontalScrollBar(), &QScrollBar::rangeChanged, this, &CategoryStrip::placeFades);
    connect(&m_chips, &QButtonGroup::idToggled, this, [this](int id, bool isChecked) {
        if (isChecked)
            ensureWidgetVisible(m_chips.button(id), fadeWidth, 0);
    });
    // Keys and clicks alike; not what setChosen() does.
    connect(&m_chips, &QButtonGroup::idClicked, this, [this](int id) { Q_EMIT chosen(m_categories.at(id)); });
}

void CategoryStrip::setCategories(const QList<ChatCategory> &categories, const std::optional<QString> &chosen)
{
    for (QAbstractButton *chip : m_chips.buttons())
        delete chip;
    m_categories.clear();
    add({}, 0);
    for (const ChatCategory &each : categories.first(std::min(categories.size(), mostChips)))
        add(each.category, each.count);
    if (!m_categories.contains(chosen))
        add(chosen, 0);
    setChosen(chosen);
    setVisible(m_categories.size() > 1);
}

void CategoryStrip::add(const std::optional<QString> &category, qint64 count)
{
    auto *chip = new Chip(category ? singleLine(*category) : u"All"_s, count, m_row);
    m_chips.addButton(chip, static_cast<int>(m_categories.size()));
    m_categories.append(category);
    m_layout->addWidget(chip);
}

void CategoryStrip::setChosen(const std::optional<QString> &chosen)
{
    if (QAbstractButton *chip = m_chips.button(static_cast<int>(m_categories.indexOf(chosen))))
        chip->setChecked(true);
}

void CategoryStrip::wheelEvent(QWheelEvent *event)
{
    const QPoint delta = event->angleDelta();
    const int along = delta.x() != 0 ? delta.x() : delta.y();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - along / 2);
    event->accept();
}

void CategoryStrip::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    placeFades();
}

void CategoryStrip::placeFades()
{
    const QScrollBar &bar = *horizontalScrollBar();
    m_leftFade->setGeometry(0, 0, fadeWidth, height());
    m_rightFade->setGeometry(width() - fadeWidth, 0, fadeWidth, height());
    m_leftFade->setVisible(bar.value() > bar.minimum());
    m_rightFade->setVisible(bar.value() < bar.maximum());
}

} // namespace nubble
