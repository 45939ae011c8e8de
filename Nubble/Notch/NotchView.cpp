#include "Notch/NotchView.h"

#include <QAbstractButton>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QPainter>

#include "Notch/ActionsCell.h"
#include "Notch/CardHost.h"
#include "Notch/ClaudeCell.h"
#include "Notch/DragGesture.h"
#include "Placement/Layout.h"
#include "Placement/MainScreen.h"
#include "Placement/NotchPlacement.h"
#include "Placement/PanelShapes.h"
#include "Platform/DesktopPreferences.h"
#include "Sessions/ProcessActivator.h"
#include "Sessions/ProjectsCardContent.h"
#include "Sessions/SessionMonitor.h"
#include "Shell/NotificationCenter.h"
#include "Usage/PlanUsageMonitor.h"
#include "Usage/UsageCardContent.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

NotchView::NotchView(const NotchServices &services, QWidget *parent)
    : QWidget(parent), m_services(services), m_hover(services.panelState),
      m_cards(new CardHost(this, services.preferences)), m_claude(new ClaudeCell(this)),
      m_actions(new ActionsCell(services.actions, this)), m_drag(new DragGesture(this))
{
    setWindowTitle(u"Nubble"_s);
    setAccessibleName(u"Nubble"_s);
    makeCards();
    makeCells();
    followDrags();
    connect(&services.panelState, &PanelState::modeChanged, m_cards, &CardHost::show);
    connect(m_cards, &CardHost::outlineChanged, this, &NotchView::outlineChanged);
    connect(m_cards, &CardHost::hoveredChanged, &m_hover, &HoverPreview::setCardHovered);
}

void NotchView::makeCards()
{
    m_cards->setCard(PanelMode::Card::Sessions, [this] {
        auto *card = new ProjectsCardContent(
            m_services.sessionMonitor, m_services.clock, qFloor(m_geometry.roomForCard()));
        connect(card, &ProjectsCardContent::sessionChosen, this, [this](qint32 pid) {
            m_services.activator.activate(pid);
        });
        connect(card, &ProjectsCardContent::closeRequested, &m_services.panelState, &PanelState::collapse);
        return card;
    });
    m_cards->setCard(PanelMode::Card::Usage, [this] {
        return new UsageCardContent(m_services.planUsage, m_services.clock, m_services.preferences);
    });
}

void NotchView::makeCells()
{
    SessionMonitor &monitor = m_services.sessionMonitor;
    connect(m_claude, &ClaudeCell::clicked, this, [this] { open(PanelMode::sessions()); });
    connect(&monitor, &SessionMonitor::sessionsChanged, this, &NotchView::updateActivity);
    connect(&monitor, &SessionMonitor::recentlyCompletedChanged, this, &NotchView::updateActivity);
    connect(m_claude, &ClaudeCell::hoveredChanged, &m_hover, &HoverPreview::setRingHovered);
    connect(&m_services.planUsage, &PlanUsageMonitor::changed, this, &NotchView::updateFraction);
    connect(&m_services.preferences, &DesktopPreferences::reducedMotionChanged, this, [this] {
        m_claude->setMotionReduced(m_services.preferences.reducedMotion());
    });
    m_claude->setMotionReduced(m_services.preferences.reducedMotion());
    updateActivity();
    updateFraction();

    m_actions->setVisible(!m_services.actions.isEmpty());
    connect(m_actions, &ActionsCell::triggered, this, &NotchView::runAction);
}

void NotchView::followDrags()
{
    m_drag->watch(this);
    connect(m_drag, &DragGesture::moved, this, [this](const QPointF &position) {
        NotchPlacement &placement = m_services.placement;
        if (!placement.isLocked())
            placement.setDragging(true);
        m_services.panelState.collapse();
        if (const std::optional<QRectF> screen = m_services.mainScreen.frame())
            placement.moveTo(position, *screen);
    });
    connect(m_drag, &DragGesture::ended, this, [this] { m_services.placement.setDragging(false); });
}

void NotchView::updateActivity()
{
    m_claude->setActivity(m_services.sessionMonitor.activity());
}

void NotchView::updateFraction()
{
    m_claude->setUsage(m_services.planUsage.windows());
}

void NotchView::open(PanelMode mode)
{
    if (mode == m_services.panelState.mode()) {
        m_services.panelState.collapse();
        return;
    }
    if (mode != PanelMode::collapsed() && !m_cards->hasCard(mode.card))
        return;
    m_services.panelState.setMode(mode);
    if (mode == PanelMode::sessions()) {
        SessionMonitor &monitor = m_services.sessionMonitor;
        monitor.refresh();
        monitor.refreshDetails(false);
        m_services.planUsage.refresh(false);
    }
}

void NotchView::runAction(Addon addon)
{
    if (addon == Addon::Notes) {
        open(PanelMode::notes());
        return;
    }
    m_services.panelState.collapse();
    if (addon == Addon::Search)
        Q_EMIT m_services.notifications.openChatSearch();
    else
        Q_EMIT m_services.notifications.askClaude();
}

void NotchView::setGeometryOnScreen(const PanelGeometry &geometry)
{
    if (m_geometry == geometry)
        return;
    m_geometry = geometry;
    m_claude->placeAround(geometry.ringCenter, geometry.edge, Typography::percentLineHeight());
    m_actions->placeAround(
        m_services.layout.actionsCenterInWindow(geometry.edge) + geometry.origin, geometry.edge);
    m_cards->setGeometry(geometry);
    update();
    Q_EMIT outlineChanged();
}

void NotchView::setTranslucent(bool translucent)
{
    m_translucent = translucent;
    m_cards->setTranslucent(translucent);
    update();
}

void NotchView::endPreview()
{
    if (m_services.panelState.mode() == PanelMode::usage())
        m_services.panelState.collapse();
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

void NotchView::contextMenuEvent(QContextMenuEvent *event)
{
    Q_EMIT menuRequested(event->globalPos());
}

void NotchView::keyPressEvent(QKeyEvent *event)
{
    auto *focused = qobject_cast<QAbstractButton *>(focusWidget());
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape)
        m_services.panelState.collapse();
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
    painter.fillPath(bodyOutline(m_geometry.edge, m_geometry.body), Palette::body);
}

} // namespace nubble
