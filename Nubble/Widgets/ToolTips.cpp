#include "Widgets/ToolTips.h"

#include <QApplication>
#include <QMouseEvent>
#include <QScreen>

#include "Placement/WindowPlacement.h"
#include "Widgets/ToolTip.h"

namespace nubble {

ToolTips::ToolTips(QWidget &window, Opener opener)
    : QObject(&window), m_window(window), m_opener(std::move(opener))
{
    if (!m_opener)
        m_opener = [this](QWidget &tip, const QRect &frame) {
            tip.setGeometry(frame.translated(m_window.mapToGlobal(QPoint())));
            tip.show();
        };
    qApp->installEventFilter(this);
}

void ToolTips::setTranslucent(bool translucent)
{
    m_translucent = translucent;
    close();
}

void ToolTips::keepFrom(Qt::Edge edge)
{
    m_edge = edge;
}

void ToolTips::show(QWidget &control, const QString &text, const QRect &part)
{
    if (auto *tips = control.window()->findChild<ToolTips *>(QString(), Qt::FindDirectChildrenOnly))
        tips->open(control, text, part);
}

void ToolTips::open(QWidget &control, const QString &text, const QRect &part)
{
    if (m_tip && m_control == &control && m_part == part && m_tip->text() == text)
        return;
    close();
    if (text.isEmpty())
        return;
    m_control = &control;
    m_part = part;
    m_tip = new ToolTip(text, m_translucent, &m_window);
    const QRect seen = control.visibleRegion().boundingRect() & part;
    const QRect about = seen.isEmpty() ? part : seen;
    const QRect target(control.mapTo(&m_window, about.topLeft()), about.size());
    const QPoint origin = m_window.mapToGlobal(QPoint());
    const QScreen *screen = QGuiApplication::screenAt(target.center() + origin);
    const QRect room = (screen ? screen : m_window.screen())->geometry().translated(-origin);
    m_opener(*m_tip, placeToolTip(target, m_tip->size(), room, m_edge));
}

void ToolTips::close()
{
    if (!m_tip)
        return;
    m_tip->hide();
    m_tip->deleteLater();
    m_tip = nullptr;
}

bool ToolTips::ends(const QObject *watched, const QEvent &event) const
{
    const bool isControl = watched == m_control;
    switch (event.type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
        return true;
    case QEvent::Hide:
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::WindowDeactivate:
        return isControl || watched == &m_window;
    case QEvent::Leave:
    case QEvent::Destroy:
    case QEvent::ToolTipChange:
        return isControl;
    case QEvent::MouseMove:
        return isControl && !m_part.contains(static_cast<const QMouseEvent &>(event).position().toPoint());
    default:
        return false;
    }
}

// Of the whole application: a control shows the toolkit's before its window hears of it, and a key that is
// pressed may be anybody's.
bool ToolTips::eventFilter(QObject *watched, QEvent *event)
{
    if (m_tip && ends(watched, *event))
        close();
    if (event->type() != QEvent::ToolTip)
        return false;
    auto *control = qobject_cast<QWidget *>(watched);
    if (!control || control->window() != &m_window || control->toolTip().isEmpty())
        return false;
    open(*control, control->toolTip(), control->rect());
    return true;
}

} // namespace nubble
