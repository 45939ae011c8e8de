#include "Notch/PanelWindow.h"

#include <QMenu>

#include <chrono>

#include "Notch/CardTransition.h"
#include "Placement/MainScreen.h"
#include "Placement/NotchPlacement.h"
#include "Platform/DesktopPreferences.h"
#include "Platform/MainThread.h"
#include "Platform/PanelSurface.h"
#include "Widgets/ToolTips.h"

using namespace std::chrono_literals;

namespace nubble {

PanelWindow::PanelWindow(
    const NotchContext &context, const NotchContents &contents, const SurfaceFactory &makeSurface,
    QObject *parent)
    : QObject(parent), m_context(context), m_view(std::make_unique<NotchView>(context, contents)),
      m_surface(makeSurface(*m_view)),
      m_toolTips(new ToolTips(
          *m_view, [this](QWidget &tip, const QRect &frame) { m_surface->showToolTip(tip, frame); })),
      m_drag([this](const QMouseEvent &event) { return m_surface->onScreen(event); })
{
    followSurface();
    followDrags();
    followTransition();
    connect(&context.state, &PanelState::modeChanged, this, &PanelWindow::followMode);
    connect(&context.placement, &NotchPlacement::changed, this, &PanelWindow::applyPlacement);
    connect(&context.mainScreen, &MainScreen::changed, this, &PanelWindow::applyPlacement);
    updateTranslucency();
    applyPlacement();
}

PanelWindow::~PanelWindow() = default;

void PanelWindow::followSurface()
{
    connect(m_surface.get(), &PanelSurface::translucencyChanged, this, &PanelWindow::updateTranslucency);
    connect(m_surface.get(), &PanelSurface::barsChanged, this, &PanelWindow::applyPlacement);
    const auto followVeils = [this] { m_view->setObservable(m_surface->isObservable()); };
    connect(m_surface.get(), &PanelSurface::observableChanged, this, followVeils);
    followVeils();
    connect(m_surface.get(), &PanelSurface::closed, this, &PanelWindow::applyPlacement);
    connect(m_view.get(), &NotchView::outlineChanged, this, [this] {
        fit();
        m_surface->setOutline(m_view->outline());
    });
    connect(m_view.get(), &NotchView::enlargeRequested, this, [this](int steps) {
        m_context.placement.enlarge(steps, m_whole->unit); // on a small screen less than it would be
    });
    m_shrinking.setSingleShot(true);
    m_shrinking.setInterval(CardTransition::duration + 90ms); // when a card that closes is no longer seen
    connect(&m_shrinking, &QTimer::timeout, this, &PanelWindow::applyPlacement);
    connect(m_view.get(), &NotchView::keyboardWanted, this, [this] {
        (void)m_surface->takeKeyboard(); // the mouse is there
        m_view->focusCard();
    });
}

void PanelWindow::followDrags()
{
    m_drag.watch(m_view.get());
    connect(&m_drag, &DragGesture::began, this, [this] { m_surface->beginMove(); });
    connect(&m_drag, &DragGesture::moved, this, [this](const QPointF &position) {
        NotchPlacement &placement = m_context.placement;
        if (!placement.isLocked() && !placement.isDragging()) {
            placement.setDragging(true);
            m_view->setCursor(Qt::ClosedHandCursor);
        }
        m_context.state.collapse();
        if (const std::optional<QRectF> screen = m_context.mainScreen.frame())
            placement.moveTo(position, *screen);
    });
    connect(&m_drag, &DragGesture::ended, this, [this] {
        m_context.placement.setDragging(false);
        m_view->unsetCursor();
        m_surface->endMove();
    });
}

void PanelWindow::followTransition()
{
    connect(&m_turn, &EdgeTransition::turned, this, &PanelWindow::showPlacement);
    connect(&m_turn, &EdgeTransition::presenceChanged, this, &PanelWindow::showGeometry);
}

// Where the window is no larger than what it shows, it would have to follow each frame.
bool PanelWindow::canFade() const
{
    return m_surface->isTranslucent() && m_surface->passesClicksThrough() && m_surface->isObservable()
        && m_view->isVisible() && m_context.placement.isVisible() && !m_context.preferences.reducedMotion();
}

void PanelWindow::applyPlacement()
{
    assertMainThread("Nubble/Notch/PanelWindow");
    const std::optional<QRectF> screen = m_context.mainScreen.frame();
    if (!screen)
        return;
    const NotchPlacement &placement = m_context.placement;
    m_whole = panelGeometry(
        m_context.layout, placement.edge(), placement.clamp(placement.offset(), *screen),
        screen->marginsRemoved(onlyOn(placement.edge(), m_surface->barsAbove())), placement.scale());
    if (!canFade())
        m_turn.stop();
    else if (m_geometry && m_geometry->edge != m_whole->edge && !m_turn.isLeaving())
        m_turn.start();
    if (!m_turn.isLeaving())
        showPlacement();
}

void PanelWindow::showPlacement()
{
    if (!m_surface->passesClicksThrough())
        m_view->setGeometryOnScreen(*m_whole); // it then knows what it shows there
    layOut(m_surface->passesClicksThrough() ? *m_whole : m_whole->cutTo(m_view->shownOnScreen()));
    if (m_context.placement.isVisible())
        m_surface->orderFront();
    else
        m_surface->orderOut();
}

void PanelWindow::layOut(const PanelGeometry &geometry)
{
    m_shrinking.stop();
    m_geometry = geometry;
    m_surface->place({.frame = geometry.frame, .edge = qtEdge(geometry.edge), .offset = geometry.offset()});
    showGeometry();
    m_drag.setHandle(geometry.body);
    m_toolTips->keepFrom(qtEdge(geometry.edge));
}

void PanelWindow::showGeometry()
{
    m_surface->setOpacity(m_turn.presence());
    m_view->setGeometryOnScreen(
        m_geometry->moved(QPointF(stepTowards(m_geometry->edge)) * (m_turn.distance() * m_geometry->unit)));
}

// What closes may still be seen for a while.
void PanelWindow::fit()
{
    if (!m_geometry || m_surface->passesClicksThrough())
        return;
    const PanelGeometry wanted = m_whole->cutTo(m_view->shownOnScreen());
    if (!m_geometry->frame.contains(wanted.frame))
        layOut(wanted);
    else if (m_geometry->frame != wanted.frame)
        m_shrinking.start();
}

void PanelWindow::followMode(PanelMode mode)
{
    if (mode.isCollapsed())
        m_surface->releaseKeyboard();
}

void PanelWindow::updateTranslucency()
{
    m_view->setTranslucent(m_surface->isTranslucent());
    m_toolTips->setTranslucent(m_surface->isTranslucent());
    m_surface->setOutline(m_view->outline());
    Q_EMIT translucencyChanged();
}

bool PanelWindow::isTranslucent() const
{
    return m_surface->isTranslucent();
}

std::optional<WindowAnchor> PanelWindow::bodyOnScreen() const
{
    if (!m_geometry)
        return std::nullopt;
    return WindowAnchor{m_geometry->body.translated(m_geometry->frame.topLeft()), m_geometry->edge};
}

bool PanelWindow::openForKeyboard(PanelMode mode)
{
    assertMainThread("Nubble/Notch/PanelWindow");
    if (m_context.state.mode() != mode)
        m_view->open(mode);
    const bool came = m_surface->takeKeyboard();
    m_view->focusCard();
    return came;
}

void PanelWindow::openMenu(QMenu &menu, const QPoint &position)
{
    QPoint corner = position;
    if (m_geometry && m_geometry->body.contains(position)) {
        const QPoint origin = m_geometry->frame.topLeft();
        const QSize card = menu.sizeHint().shrunkBy(menu.contentsMargins());
        corner = placeBeside(bodyOnScreen(), card, m_geometry->screen.translated(origin)).topLeft() - origin;
    }
    const QMargins shadow = menu.contentsMargins();
    m_surface->openMenu(menu, corner - QPoint(shadow.left(), shadow.top()));
}

} // namespace nubble
