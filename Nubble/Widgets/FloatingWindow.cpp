#include "Widgets/FloatingWindow.h"

#include <QPointer>

#include "Placement/PanelShapes.h"
#include "Platform/FloatingSurface.h"
#include "Platform/MainThread.h"
#include "Widgets/CardFrame.h"
#include "Widgets/FloatingFrame.h"
#include "Widgets/Palette.h"
#include "Widgets/ToolTips.h"

namespace nubble {

FloatingWindow::FloatingWindow(
    QString title, ContentFactory makeContent, SurfaceFactory makeSurface, QObject *parent)
    : QObject(parent), m_title(std::move(title)), m_makeContent(std::move(makeContent)),
      m_makeSurface(std::move(makeSurface))
{
}

FloatingWindow::~FloatingWindow() = default;

void FloatingWindow::make()
{
    m_content = m_makeContent();
    m_frame = std::make_unique<FloatingFrame>(m_content);
    m_frame->setWindowTitle(m_title);
    m_frame->setPalette(Palette::widgets());
    m_surface = m_makeSurface(*m_frame);
    m_toolTips = new ToolTips(*m_frame);
    connect(m_frame.get(), &FloatingFrame::dragged, m_surface.get(), &FloatingSurface::startMove);
    connect(m_frame.get(), &FloatingFrame::dismissed, this, &FloatingWindow::close);
    connect(m_surface.get(), &FloatingSurface::keyboardTaken, this, &FloatingWindow::keyboardTaken);
    connect(m_surface.get(), &FloatingSurface::keyboardLost, this, &FloatingWindow::keyboardLost);
    connect(
        m_surface.get(), &FloatingSurface::translucencyChanged, this, &FloatingWindow::followTranslucency);
    followTranslucency();
}

void FloatingWindow::followTranslucency()
{
    m_frame->setTranslucent(m_surface->isTranslucent());
    m_toolTips->setTranslucent(m_surface->isTranslucent());
}

void FloatingWindow::openAt(const QRect &content)
{
    assertMainThread("Nubble/Widgets/FloatingWindow");
    if (!m_frame)
        make();
    m_frame->setCard(content.size());
    m_surface->place(content.marginsAdded(cardShadowRoom));
    m_surface->setOutline(m_frame->frame().outline);
    open();
}

void FloatingWindow::open()
{
    assertMainThread("Nubble/Widgets/FloatingWindow");
    if (!m_frame)
        make();
    m_open = true;
    m_lostWhileHeld = false;
    m_keyboardAskedFor = !m_surface->hasKeyboard();
    m_surface->orderFront();
    m_content->setFocus(Qt::OtherFocusReason);
}

void FloatingWindow::close()
{
    assertMainThread("Nubble/Widgets/FloatingWindow");
    if (!m_open)
        return;
    m_open = false;
    m_surface->orderOut();
    m_surface->setUnseen(false);
    Q_EMIT closed();
}

FloatingWindow::Hold FloatingWindow::holdOpen()
{
    Hold hold = m_hold.lock();
    if (!hold) {
        const auto release = [window = QPointer(this)](void *) {
            if (window)
                window->holdReleased();
        };
        hold = Hold(this, release);
        m_hold = hold;
    }
    return hold;
}

void FloatingWindow::setUnseen(bool unseen)
{
    if (m_open)
        m_surface->setUnseen(unseen);
}

QRect FloatingWindow::frame() const
{
    return m_frame ? m_frame->geometry() : QRect();
}

void FloatingWindow::holdReleased()
{
    if (m_lostWhileHeld)
        close();
}

void FloatingWindow::keyboardTaken()
{
    m_keyboardAskedFor = false;
    m_lostWhileHeld = false;
}

void FloatingWindow::keyboardLost()
{
    if (!m_open || m_keyboardAskedFor)
        return;
    if (m_hold.expired())
        close();
    else
        m_lostWhileHeld = true;
}

} // namespace nubble
