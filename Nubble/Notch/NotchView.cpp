#include "Notch/NotchView.h"

#include <QAbstractButton>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QPainter>

#include "Notch/ActionsCell.h"
#include "Notch/CardHost.h"
#include "Notch/CellFrame.h"
#include "Notch/ClaudeCell.h"
#include "Notch/CompanionCell.h"
#include "Placement/Layout.h"
#include "Placement/PanelShapes.h"
#include "Platform/DesktopPreferences.h"
#include "Widgets/Palette.h"
#include "Widgets/PixelGrid.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;

namespace nubble {

NotchView::NotchView(const NotchContext &context, const NotchContents &contents, QWidget *parent)
    : QWidget(parent), m_context(context),
      m_hover(context.state, [this] { return isPointerBetweenRingAndCard(); }),
      m_cards(new CardHost(this, contents.cards, context.preferences)), m_claude(new ClaudeCell(this)),
      m_companion(contents.companion ? new CompanionCell(*contents.companion, this) : nullptr),
      m_actions(new ActionsCell(contents.actions, this))
{
    setWindowTitle(u"Nubble"_s);
    setAccessibleName(u"Nubble"_s);
    followState();
    connect(&context.preferences, &DesktopPreferences::reducedMotionChanged, this, &NotchView::followMotion);
    followMotion();
}

void NotchView::followState()
{
    connect(&m_context.state, &PanelState::modeChanged, m_cards, &CardHost::show);
    connect(m_cards, &CardHost::closeRequested, &m_context.state, &PanelState::collapse);
    connect(m_cards, &CardHost::outlineChanged, this, &NotchView::outlineChanged);
    connect(m_cards, &CardHost::hoveredChanged, &m_hover, &HoverPreview::setCardHovered);
    connect(m_claude, &ClaudeCell::hoveredChanged, &m_hover, &HoverPreview::setRingHovered);
    connect(m_claude, &ClaudeCell::ringMoved, m_cards, [this] { m_cards->pointTo(m_claude->ringCenter()); });
    connect(m_claude, &ClaudeCell::pressed, &m_hover, &HoverPreview::cancel); // it may become a drag
    connect(m_claude, &ClaudeCell::clicked, this, [this] { open(PanelMode::sessions()); });
}

bool NotchView::isPointerBetweenRingAndCard() const
{
    const QRect way = m_claude->geometry() | m_cards->outline().boundingRect().toAlignedRect();
    return way.contains(mapFromGlobal(QCursor::pos()));
}

void NotchView::followMotion()
{
    const bool still = m_context.preferences.reducedMotion() || !m_observable;
    m_claude->setMotionReduced(still);
    m_actions->setMotionReduced(still);
}

void NotchView::open(PanelMode mode)
{
    if (mode == m_context.state.mode()) {
        m_context.state.collapse();
        return;
    }
    const Card *card = m_cards->cardOf(mode);
    if (!card && !mode.isCollapsed())
        return;
    m_context.state.setMode(mode);
    if (card && card->refresh)
        card->refresh();
}

void NotchView::setGeometryOnScreen(const PanelGeometry &geometry)
{
    if (m_geometry == geometry)
        return;
    m_geometry = geometry;
    Units::set(*this, geometry.unit);
    placeCells();
    m_cards->setGeometry(geometry, m_claude->ringCenter());
    update();
    Q_EMIT outlineChanged();
}

void NotchView::placeCells()
{
    const Layout &layout = m_context.layout;
    const NotchEdge edge = m_geometry.edge;
    const auto frame = [&](const QRectF &area, const QPointF &center) {
        return cellFrame(
            m_geometry.placed(area), m_geometry.placed(center), edge, Typography::percentLineHeight(),
            m_geometry.unit);
    };
    m_claude->place(frame(layout.ringArea(edge), layout.ringCenter(edge)));
    if (m_companion)
        m_companion->place(frame(layout.quenwickArea(edge), layout.quenwickCenterInWindow(edge)));
    QList<QRectF> areas;
    for (int i = 0; i < layout.actionCount(); ++i)
        areas.append(m_geometry.placed(layout.actionArea(edge, i)));
    m_actions->place(areas, m_geometry.placed(layout.actionsCenterInWindow(edge)), edge);
}

void NotchView::setTranslucent(bool translucent)
{
    m_translucent = translucent;
    m_cards->setTranslucent(translucent);
    update();
}

void NotchView::setObservable(bool observable)
{
    m_observable = observable;
    followMotion();
}

void NotchView::endPreview()
{
    m_hover.cancel();
    if (m_context.state.mode() == PanelMode::usage())
        m_context.state.collapse();
}

void NotchView::closeCardsWhenLeft()
{
    m_hover.closeEveryCardWhenLeft();
}

void NotchView::focusCard()
{
    m_cards->focusFirstControl();
}

QPainterPath NotchView::outline() const
{
    QPainterPath outline = bodyOutline(m_geometry.edge, m_geometry.body, m_geometry.unit);
    outline.addPath(m_cards->outline());
    return outline;
}

QRect NotchView::shownOnScreen() const
{
    QRectF shown = m_geometry.body;
    if (const QPainterPath card = m_cards->outline(); !card.isEmpty())
        shown |= card.boundingRect().marginsAdded(m_geometry.cardShadow());
    return shown.translated(m_geometry.frame.topLeft()).toAlignedRect();
}

void NotchView::contextMenuEvent(QContextMenuEvent *event)
{
    Q_EMIT menuRequested(event->pos());
}

void NotchView::keyPressEvent(QKeyEvent *event)
{
    auto *focused = qobject_cast<QAbstractButton *>(focusWidget());
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape)
        m_context.state.collapse();
    else if (isEnter && focused && !event->isAutoRepeat())
        focused->animateClick(); // by themselves buttons know the space bar only
    else
        QWidget::keyPressEvent(event);
}

void NotchView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && m_cards->outline().contains(event->position()))
        Q_EMIT keyboardWanted();
}

// Over a card the wheel scrolls.
void NotchView::wheelEvent(QWheelEvent *event)
{
    if (!(event->modifiers() & Qt::ControlModifier) || !m_geometry.body.contains(event->position()))
        return;
    m_turnedBy += event->angleDelta().y();
    const int steps = m_turnedBy / QWheelEvent::DefaultDeltasPerStep;
    m_turnedBy %= QWheelEvent::DefaultDeltasPerStep;
    if (steps != 0)
        Q_EMIT enlargeRequested(steps);
}

void NotchView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (!m_translucent) {
        painter.fillRect(m_geometry.body, Palette::body); // the window is cut along the outline
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF body = PixelGrid::aligned(painter, m_geometry.body);
    painter.fillPath(bodyOutline(m_geometry.edge, body, m_geometry.unit), Palette::body);
}

} // namespace nubble
