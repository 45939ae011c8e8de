#include "Notch/PanelWindow.h"

#include <QApplication>
#include <QHelpEvent>

#include "Placement/MainScreen.h"
#include "Placement/NotchPlacement.h"
#include "Platform/PanelSurface.h"

namespace nubble {

PanelWindow::PanelWindow(
    const NotchContext &context, const NotchContents &contents, const SurfaceFactory &makeSurface,
    QObject *parent)
    : QObject(parent), m_context(context), m_view(std::make_unique<NotchView>(context, contents)),
      m_surface(makeSurface(*m_view)),
      m_drag([this](const QMouseEvent &event) { return m_surface->onScreen(event); })
{
    followSurface();
    followDrags();
    connect(&context.state, &PanelState::modeChanged, this, &PanelWindow::followMode);
    connect(&context.placement, &NotchPlacement::changed, this, &PanelWindow::applyPlacement);
    connect(&context.mainScreen, &MainScreen::changed, this, &PanelWindow::applyPlacement);
    qApp->installEventFilter(this);
    m_view->setTranslucent(m_surface->isTranslucent());
    applyPlacement();
}

PanelWindow::~PanelWindow() = default;

void PanelWindow::followSurface()
{
    connect(m_surface.get(), &PanelSurface::translucencyChanged, this, &PanelWindow::updateTranslucency);
    const auto followVeils = [this] { m_view->setObservable(m_surface->isObservable()); };
    connect(m_surface.get(), &PanelSurface::observableChanged, this, followVeils);
    followVeils();
    connect(m_surface.get(), &PanelSurface::closed, this, &PanelWindow::applyPlacement);
    connect(
        m_view.get(), &NotchView::outlineChanged, this, [this] { m_surface->setOutline(m_view->outline()); });
    connect(m_view.get(), &NotchView::keyboardWanted, this, [this] {
        m_surface->takeKeyboard();
        m_view->focusCard();
    });
}

void PanelWindow::followDrags()
{
    m_drag.watch(m_view.get());
    connect(&m_drag, &DragGesture::began, this, [this] { m_surface->beginMove(); });
    connect(&m_drag, &DragGesture::moved, this, [this](const QPointF &position) {
        NotchPlacement &placement = m_context.placement;
        if (!placement.isLocked())
            placement.setDragging(true);
        m_context.state.collapse();
        if (const std::optional<QRectF> screen = m_context.mainScreen.frame())
            placement.moveTo(position, *screen);
    });
    connect(&m_drag, &DragGesture::ended, this, [this] {
        m_context.placement.setDragging(false);
        m_surface->endMove();
    });
}

void PanelWindow::applyPlacement()
{
    const std::optional<QRectF> screen = m_context.mainScreen.frame();
    if (!screen)
        return;
    const NotchPlacement &placement = m_context.placement;
    m_geometry = panelGeometry(
        m_context.layout, placement.edge(), placement.clamp(placement.offset(), *screen), *screen);
    m_surface->place(
        {.frame = m_geometry->frame, .edge = qtEdge(m_geometry->edge), .offset = m_geometry->offset()});
    m_view->setGeometryOnScreen(*m_geometry);
    updateActiveRects(m_context.state.mode());
    if (placement.isVisible())
        m_surface->orderFront();
    else
        m_surface->orderOut();
}

void PanelWindow::updateActiveRects(PanelMode mode)
{
    if (m_geometry)
        m_surface->setActiveRects(m_geometry->activeRects(!mode.isCollapsed()));
}

void PanelWindow::followMode(PanelMode mode)
{
    updateActiveRects(mode);
    if (mode.isCollapsed())
        m_surface->releaseKeyboard();
}

void PanelWindow::updateTranslucency()
{
    m_view->setTranslucent(m_surface->isTranslucent());
    m_surface->setOutline(m_view->outline());
}

std::optional<WindowAnchor> PanelWindow::bodyOnScreen() const
{
    if (!m_geometry)
        return std::nullopt;
    return WindowAnchor{m_geometry->body.translated(m_geometry->frame.topLeft()), m_geometry->edge};
}

void PanelWindow::openForKeyboard(PanelMode mode)
{
    if (m_context.state.mode() != mode)
        m_view->open(mode);
    m_surface->takeKeyboard();
    m_view->focusCard();
}

void PanelWindow::openMenu(QMenu &menu, const QPoint &position)
{
    m_surface->openMenu(menu, position);
}

// By itself the toolkit would open tool tips as windows of their own.
bool PanelWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return false;
    auto *control = qobject_cast<QWidget *>(watched);
    if (!control || control->window() != m_view.get() || control->toolTip().isEmpty())
        return false;
    const QPoint position = control->mapTo(m_view.get(), static_cast<QHelpEvent *>(event)->pos());
    m_surface->showToolTip(control->toolTip(), position, *control);
    return true;
}

} // namespace nubble
