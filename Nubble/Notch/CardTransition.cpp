#include "Notch/CardTransition.h"

#include <QGraphicsEffect>
#include <QPainter>
#include <QVariantAnimation>
#include <QWidget>

#include <utility>

using namespace Qt::StringLiterals;

namespace nubble::CardTransition {

namespace {

constexpr int distance = 8;

// Shows a picture of the card, fainter and on its way: drawing every row for each frame costs far more. The
// card itself is in its place from the start, for mouse, keyboard and screen reader. When it is drawn for
// another reason than the next frame it may look different, and so is its picture.
class Snapshot : public QGraphicsEffect {
public:
    Snapshot(QWidget *card, const QPoint &way) : QGraphicsEffect(card), m_card(card), m_way(way) { }

    void setPresence(double presence) // 0 to 1
    {
        m_presence = presence;
        m_isNextFrame = true;
        update();
    }

    [[nodiscard]] QRectF boundingRectFor(const QRectF &rect) const override
    {
        return rect.united(rect.translated(m_way));
    }

protected:
    void draw(QPainter *painter) override
    {
        const bool isNextFrame = std::exchange(m_isNextFrame, false);
        if (m_presence <= 0)
            return;
        const qreal scale = painter->device()->devicePixelRatioF();
        if (!isNextFrame || m_picture.size() != m_card->size() * scale)
            m_picture = picture(scale);
        painter->setOpacity(m_presence);
        painter->drawPixmap((QPointF(m_way) * (1 - m_presence)).toPoint(), m_picture);
    }

private:
    [[nodiscard]] QPixmap picture(qreal scale) const
    {
        QPixmap picture(m_card->size() * scale);
        picture.setDevicePixelRatio(scale);
        picture.fill(Qt::transparent);
        m_card->render(&picture, {}, {}, QWidget::DrawChildren);
        return picture;
    }

    QWidget *m_card;
    QPoint m_way; // from the card's place to where it comes from
    QPixmap m_picture;
    double m_presence = 0;
    bool m_isNextFrame = false;
};

} // namespace

void run(QWidget *card, const QPoint &towardsBody, Direction direction)
{
    delete card->findChild<QVariantAnimation *>(u"transition"_s, Qt::FindDirectChildrenOnly);
    auto *snapshot = new Snapshot(card, distance * towardsBody);
    card->setGraphicsEffect(snapshot);
    auto *animation = new QVariantAnimation(card);
    animation->setObjectName(u"transition"_s);
    animation->setDuration(static_cast<int>(duration.count()));
    animation->setEasingCurve(QEasingCurve::OutCubic);
    animation->setStartValue(direction == Direction::In ? 0.0 : 1.0);
    animation->setEndValue(direction == Direction::In ? 1.0 : 0.0);
    QObject::connect(
        animation, &QVariantAnimation::valueChanged, snapshot,
        [snapshot](const QVariant &value) { snapshot->setPresence(value.toDouble()); });
    QObject::connect(animation, &QVariantAnimation::finished, card, [card, direction] {
        card->setGraphicsEffect(nullptr);
        if (direction == Direction::Out) {
            card->hide();
            card->deleteLater();
        }
    });
    snapshot->setPresence(animation->startValue().toDouble());
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

} // namespace nubble::CardTransition
