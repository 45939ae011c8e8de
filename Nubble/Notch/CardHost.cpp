#include "Notch/CardHost.h"

#include <QEvent>
#include <QWidget>

#include <algorithm>

#include "Notch/CardTransition.h"
#include "Platform/DesktopPreferences.h"
#include "Platform/MainThread.h"
#include "Widgets/TooltipShell.h"

namespace nubble {

namespace {

// Of two that lie one behind the other on the way to the edge.
double distanceBetween(NotchEdge edge, const QRectF &body, const QRectF &card)
{
    const double depths = isVertical(edge) ? body.width() + card.width() : body.height() + card.height();
    return QPointF::dotProduct(body.center() - card.center(), stepTowards(edge)) - depths / 2;
}

} // namespace

CardHost::CardHost(QWidget *view, QList<Card> cards, const DesktopPreferences &preferences)
    : QObject(view), m_view(view), m_preferences(preferences), m_cards(std::move(cards))
{
}

const Card *CardHost::cardOf(PanelMode mode) const
{
    const auto found = std::find_if(
        m_cards.begin(), m_cards.end(), [mode](const Card &each) { return each.name == mode.card; });
    return found == m_cards.end() ? nullptr : &*found;
}

void CardHost::show(PanelMode mode)
{
    assertMainThread("Nubble/Notch/CardHost");
    if (mode.card == m_mode.card)
        return;
    close();
    m_mode = mode;
    open();
    Q_EMIT outlineChanged(); // after which all may lie elsewhere in the window
    if (m_shell && animates())
        CardTransition::run(m_shell, stepTowards(m_geometry.edge), CardTransition::Direction::In);
}

void CardHost::open()
{
    const Card *card = cardOf(m_mode);
    if (!card)
        return;
    QWidget *content =
        card->makeContent({.panel = m_view, .height = qFloor(m_geometry.roomForCard()), .close = [this] {
                               Q_EMIT closeRequested();
                           }});
    m_shell = new TooltipShell(content, m_geometry.edge, m_translucent, m_view);
    m_shell->installEventFilter(this);
    connect(m_shell, &TooltipShell::contentResized, this, [this] {
        layOut();
        Q_EMIT outlineChanged();
    });
    m_shell->lower(); // the body and its cells lie above the shadow
    layOut();
    m_shell->show();
}

void CardHost::close()
{
    if (!m_shell)
        return;
    m_shell->removeEventFilter(this);
    m_shell->disconnect(this);
    m_shell->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_shell->setEnabled(false);
    if (animates()) {
        CardTransition::run(m_shell, stepTowards(m_geometry.edge), CardTransition::Direction::Out);
    } else {
        m_shell->hide();
        m_shell->deleteLater();
    }
    m_shell = nullptr;
    Q_EMIT hoveredChanged(false);
}

void CardHost::layOut()
{
    const double tipFromBody = 3 * m_geometry.unit;
    const QMargins shadow = m_geometry.cardShadow();
    const QRect card = m_geometry.cardRect(m_shell->sizeHint().shrunkBy(shadow));
    m_shell->setGeometry(card.marginsAdded(shadow));
    const QPointF ring = m_ring - card.topLeft();
    m_shell->setTail(
        isVertical(m_geometry.edge) ? ring.y() : ring.x(),
        distanceBetween(m_geometry.edge, m_geometry.body, card) - tipFromBody);
}

void CardHost::pointTo(const QPointF &ring)
{
    m_ring = ring;
    if (!m_shell)
        return;
    layOut();
    Q_EMIT outlineChanged();
}

void CardHost::setGeometry(const PanelGeometry &geometry, const QPointF &ring)
{
    m_ring = ring;
    const bool isAnother = geometry.edge != m_geometry.edge || geometry.unit != m_geometry.unit;
    m_geometry = geometry;
    if (!m_shell)
        return;
    if (!isAnother) {
        layOut();
        return;
    }
    // It belongs to an edge and a size: for others it is made again.
    const bool hadKeyboard = m_shell->isAncestorOf(m_view->focusWidget());
    m_shell->hide();
    m_shell->deleteLater();
    m_shell = nullptr;
    open();
    if (hadKeyboard)
        focusFirstControl();
}

void CardHost::setTranslucent(bool translucent)
{
    m_translucent = translucent;
    if (m_shell)
        m_shell->setTranslucent(translucent);
}

QPainterPath CardHost::outline() const
{
    return m_shell ? m_shell->outline() : QPainterPath();
}

void CardHost::focusFirstControl()
{
    if (!m_shell)
        return;
    for (QWidget *control = m_view->nextInFocusChain(); control != m_view;
         control = control->nextInFocusChain()) {
        if (m_shell->isAncestorOf(control) && control->focusPolicy() & Qt::TabFocus && control->isVisible()
            && control->isEnabled()) {
            control->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

bool CardHost::animates() const
{
    // A window that is cut to its outline has nothing to fade into.
    return m_translucent && !m_preferences.reducedMotion();
}

bool CardHost::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_shell && event->type() == QEvent::Enter)
        Q_EMIT hoveredChanged(true);
    if (watched == m_shell && event->type() == QEvent::Leave)
        Q_EMIT hoveredChanged(false);
    return QObject::eventFilter(watched, event);
}

} // namespace nubble
