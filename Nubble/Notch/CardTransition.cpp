#include "Notch/CardTransition.h"

#include <QGraphicsOpacityEffect>
#include <QVariantAnimation>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace nubble::CardTransition {

namespace {

constexpr int duration = 160;
constexpr int distance = 8;

} // namespace

void run(QWidget *card, const QPoint &towardsBody, Direction direction)
{
    cutShort(card);
    auto *effect = new QGraphicsOpacityEffect(card);
    card->setGraphicsEffect(effect);
    auto *animation = new QVariantAnimation(card);
    animation->setObjectName(u"transition"_s);
    animation->setDuration(duration);
    animation->setEasingCurve(QEasingCurve::OutCubic);
    animation->setStartValue(direction == Direction::In ? 0.0 : 1.0);
    animation->setEndValue(direction == Direction::In ? 1.0 : 0.0);
    const QPoint home = card->pos();
    const auto show = [card, effect, home, towardsBody](double presence) {
        effect->setOpacity(presence);
        card->move(home + towardsBody * qRound(distance * (1 - presence)));
    };
    QObject::connect(animation, &QVariantAnimation::valueChanged, card, [show](const QVariant &value) {
        show(value.toDouble());
    });
    QObject::connect(animation, &QVariantAnimation::finished, card, [card, direction] {
        card->setGraphicsEffect(nullptr);
        if (direction == Direction::Out) {
            card->hide();
            card->deleteLater();
        }
    });
    show(animation->startValue().toDouble());
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

void cutShort(QWidget *card)
{
    delete card->findChild<QVariantAnimation *>(u"transition"_s, Qt::FindDirectChildrenOnly);
    card->setGraphicsEffect(nullptr);
}

} // namespace nubble::CardTransition
