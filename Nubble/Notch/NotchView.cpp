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
    placeCells();
    m_cards->setGeometry(geometry, m_claude->ringCenter());
    update();
    Q_EMIT outlineChanged();
}

void NotchView::placeCells()
{
    const Layout &layout = m_context.layout;
    const NotchEdge edge = m_geometry.edge;
    const QPointF &origin = m_geometry.origin;
    const double lineHeight = Typography::percentLineHeight();
    m_claude->place(
        cellFrame(layout.ringArea(edge).translated(origin), m_geometry.ringCenter, edge, lineHeight));
    if (m_companion)
        m_companion->place(cellFrame(
            layout.quenwickArea(edge).translated(origin), layout.quenwickCenterInWindow(edge) + origin, edge,
            lineHeight));
    QList<QRectF> areas;
    for (int i = 0; i < layout.actionCount(); ++i)
        areas.append(layout.actionArea(edge, i).translated(origin));
    m_actions->place(areas, layout.actionsCenterInWindow(edge) + origin, edge);
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
    QPainterPath outline = bodyOutline(m_geometry.edge, m_geometry.body);
    outline.addPath(m_cards->outline());
    return outline;
}

QRect NotchView::shownOnScreen() const
{
    QRectF shown = m_geometry.body;
    if (const QPainterPath card = m_cards->outline(); !card.isEmpty())
        shown |= card.boundingRect().marginsAdded(cardShadowRoom);
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

void NotchView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (!m_translucent) {
        painter.fillRect(m_geometry.body, Palette::body); // the window is cut along the outline
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF body = PixelGrid::aligned(painter, m_geometry.body);
    painter.fillPath(bodyOutline(m_geometry.edge, body), Palette::body);
}

} // namespace nubble
