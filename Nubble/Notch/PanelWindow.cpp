#include "Notch/PanelWindow.h"

#include "Placement/MainScreen.h"
#include "Placement/NotchPlacement.h"
#include "Platform/PanelSurface.h"

namespace nubble {

PanelWindow::PanelWindow(const NotchServices &services, const SurfaceFactory &makeSurface, QObject *parent)
    : QObject(parent), m_services(services), m_view(std::make_unique<NotchView>(services)),
      m_surface(makeSurface(*m_view))
{
    connect(m_surface.get(), &PanelSurface::translucencyChanged, this, &PanelWindow::updateTranslucency);
    connect(
        m_view.get(), &NotchView::outlineChanged, this, [this] { m_surface->setOutline(m_view->outline()); });
    connect(m_view.get(), &NotchView::keyboardWanted, this, [this] {
        m_surface->takeKeyboard();
        m_view->focusCard();
    });
    connect(&services.panelState, &PanelState::modeChanged, this, &PanelWindow::followMode);
    connect(&services.placement, &NotchPlacement::changed, this, &PanelWindow::applyPlacement);
    connect(&services.mainScreen, &MainScreen::changed, this, &PanelWindow::applyPlacement);
    m_view->setTranslucent(m_surface->isTranslucent());
    applyPlacement();
}

PanelWindow::~PanelWindow() = default;

void PanelWindow::applyPlacement()
{
    const std::optional<QRectF> screen = m_services.mainScreen.frame();
    if (!screen)
        return;
    const NotchPlacement &placement = m_services.placement;
    m_geometry = panelGeometry(
        m_services.layout, placement.edge(), placement.clamp(placement.offset(), *screen), *screen);
    m_surface->place(m_geometry->frame);
    m_view->setGeometryOnScreen(*m_geometry);
    updateActiveRects(m_services.panelState.mode());
    if (placement.isVisible())
        m_surface->orderFront();
    else
        m_surface->orderOut();
}

void PanelWindow::updateActiveRects(PanelMode mode)
{
    if (m_geometry)
        m_surface->setActiveRects(m_geometry->activeRects(mode != PanelMode::collapsed()));
}

void PanelWindow::followMode(PanelMode mode)
{
    updateActiveRects(mode);
    if (mode == PanelMode::collapsed())
        m_surface->releaseKeyboard();
}

void PanelWindow::updateTranslucency()
{
    m_view->setTranslucent(m_surface->isTranslucent());
    m_surface->setOutline(m_view->outline());
}

std::optional<PanelWindow::Anchor> PanelWindow::bodyOnScreen() const
{
    if (!m_geometry)
        return std::nullopt;
    return Anchor{m_geometry->body.translated(m_geometry->frame.topLeft()), m_geometry->edge};
}

void PanelWindow::openForKeyboard(PanelMode mode)
{
    if (m_services.panelState.mode() != mode)
        m_view->open(mode);
    m_surface->takeKeyboard();
    m_view->focusCard();
}

} // namespace nubble
