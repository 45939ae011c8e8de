#include "Widgets/FloatingFrame.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

#include "Placement/PanelShapes.h"
#include "Widgets/CardFrame.h"

namespace nubble {

namespace {

constexpr int dragDistance = 4; // less than the desktop's for drag and drop: a window follows at once

} // namespace

FloatingFrame::FloatingFrame(QWidget *content)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(cardShadowRoom);
    layout->addWidget(content);
}

void FloatingFrame::setCard(const QSize &card)
{
    setFixedSize(card.grownBy(cardShadowRoom));
    m_drawn = {};
}

CardFrame FloatingFrame::frame() const
{
    return CardFrame::rounded(rect().marginsRemoved(cardShadowRoom));
}

void FloatingFrame::setTranslucent(bool translucent)
{
    m_translucent = translucent;
    m_drawn = {};
    update();
}

bool FloatingFrame::isTranslucentOver(const QWidget &control)
{
    const auto *frame = qobject_cast<const FloatingFrame *>(control.window());
    return frame && frame->m_translucent;
}

void FloatingFrame::paintEvent(QPaintEvent *)
{
    if (m_drawn.isNull() || m_drawn.devicePixelRatio() != devicePixelRatioF())
        m_drawn = frame().drawn(size(), devicePixelRatioF(), m_translucent);
    QPainter(this).drawPixmap(0, 0, m_drawn);
}

void FloatingFrame::hideEvent(QHideEvent *)
{
    m_drawn = {};
    m_pressed.reset();
}

// Whoever closes it, such as the window manager, does what Escape does: it is made only once.
void FloatingFrame::closeEvent(QCloseEvent *event)
{
    event->ignore();
    Q_EMIT dismissed();
}

void FloatingFrame::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Cancel))
        Q_EMIT dismissed();
    else
        QWidget::keyPressEvent(event);
}

// What takes the mouse does not let the press come here, but for a control that is switched off just now.
bool FloatingFrame::isBackground(const QPoint &position) const
{
    const QWidget *at = childAt(position);
    while (at && at->focusPolicy() == Qt::NoFocus)
        at = at == this ? nullptr : at->parentWidget();
    return !at;
}

void FloatingFrame::mousePressEvent(QMouseEvent *event)
{
    m_pressed.reset();
    if (event->button() == Qt::LeftButton && isBackground(event->position().toPoint()))
        m_pressed = event->position().toPoint();
}

void FloatingFrame::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_pressed || (event->position().toPoint() - *m_pressed).manhattanLength() < dragDistance)
        return;
    m_pressed.reset();
    Q_EMIT dragged();
}

} // namespace nubble
