#include "Search/CategoryStrip.h"

#include <QAbstractButton>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QKeyEvent>
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
constexpr int fadeWidth = 32;

class Chip : public QAbstractButton {
public:
    Chip(const QString &name, qint64 count, QWidget *parent)
        : QAbstractButton(parent), m_count(count > 0 ? QString::number(count) : QString()), m_hover(this)
    {
        const QFontMetricsF metrics(Typography::cardBody());
        const int nameWidth = std::min(qCeil(metrics.horizontalAdvance(name)), widestName);
        setFont(Typography::cardBody());
        setText(name);
        setToolTip(nameWidth == widestName ? name : QString());
        setAccessibleName(m_count.isEmpty() ? name : u"%1, %2"_s.arg(name, m_count));
        setCheckable(true);
        setFocusPolicy(Qt::TabFocus);
        setCursor(Qt::PointingHandCursor);
        const int countWidth = m_count.isEmpty() ? 0 : countGap + qCeil(metrics.horizontalAdvance(m_count));
        setFixedSize(nameWidth + countWidth + 2 * chipPadding, chipHeight);
    }

protected:
    // The two move through the results, from here too.
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)
            event->ignore();
        else
            QAbstractButton::keyPressEvent(event);
    }
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(hasFocus() ? QPen(Palette::focus, 1.5) : QPen(Qt::NoPen));
        painter.setBrush(isChecked() ? Palette::chosen : m_hover.lifted(Palette::control, isDown()));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), chipHeight / 2.0, chipHeight / 2.0);
        const QRect inside = rect().adjusted(chipPadding, 0, -chipPadding, 0);
        const int countWidth =
            m_count.isEmpty() ? 0 : countGap + qCeil(QFontMetricsF(font()).horizontalAdvance(m_count));
        painter.setPen(isChecked() ? Palette::textPrimary : Palette::textSecondary);
        Typography::drawElided(painter, inside.adjusted(0, 0, -countWidth, 0), text());
        painter.setPen(Palette::textSecondary);
        painter.drawText(inside, Qt::AlignRight | Qt::AlignVCenter, m_count);
    }

private:
    QString m_count;
    HoverLift m_hover;
};

} // namespace

CategoryStrip::CategoryStrip(QWidget *parent)
    : QScrollArea(parent), m_row(new QWidget), m_layout(new QHBoxLayout(m_row)),
      m_fade(new QGraphicsOpacityEffect)
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
    viewport()->setGraphicsEffect(m_fade);
    m_fade->setOpacity(1);
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, &CategoryStrip::placeFade);
    connect(horizontalScrollBar(), &QScrollBar::rangeChanged, this, &CategoryStrip::placeFade);
    connect(&m_chips, &QButtonGroup::idToggled, this, [this](int id, bool isChecked) {
        if (isChecked)
            ensureWidgetVisible(m_chips.button(id), fadeWidth, 0);
    });
    add({}, 0); // is there always
    // Keys and clicks alike; not what setChosen() does.
    connect(&m_chips, &QButtonGroup::idClicked, this, [this](int id) { Q_EMIT chosen(m_categories.at(id)); });
}

void CategoryStrip::setCategories(const QList<ChatCategory> &categories, const std::optional<QString> &chosen)
{
    while (m_categories.size() > 1) {
        m_categories.removeLast();
        delete m_chips.button(static_cast<int>(m_categories.size()));
    }
    for (const ChatCategory &each : categories.first(std::min(categories.size(), mostChips)))
        if (!singleLine(each.category).isEmpty()) // what is in no category
            add(each.category, each.count);
    if (!m_categories.contains(chosen))
        add(chosen, 0);
    setChosen(chosen);
    setVisible(m_categories.size() > 1);
}

void CategoryStrip::add(const std::optional<QString> &category, qint64 count)
{
    auto *chip = new Chip(category ? singleLine(*category) : u"All"_s, count, m_row);
    const int id = static_cast<int>(m_categories.size());
    if (id > 0)
        setTabOrder(m_chips.button(id - 1), chip); // else it would come behind everything in the window
    m_chips.addButton(chip, id);
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

// The keys that would scroll it move through the results.
void CategoryStrip::keyPressEvent(QKeyEvent *event)
{
    event->ignore();
}

void CategoryStrip::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    placeFade();
}

// Where there is more, the chips fade out.
void CategoryStrip::placeFade()
{
    const QScrollBar &bar = *horizontalScrollBar();
    m_fade->setEnabled(bar.maximum() > bar.minimum());
    const double share = std::min(0.5, 1.0 * fadeWidth / std::max(1, viewport()->width()));
    QLinearGradient mask(0, 0, viewport()->width(), 0);
    mask.setColorAt(0, bar.value() > bar.minimum() ? Qt::transparent : Qt::black);
    mask.setColorAt(share, Qt::black);
    mask.setColorAt(1 - share, Qt::black);
    mask.setColorAt(1, bar.value() < bar.maximum() ? Qt::transparent : Qt::black);
    m_fade->setOpacityMask(mask);
}

} // namespace nubble
