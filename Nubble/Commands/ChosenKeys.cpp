#include "Commands/ChosenKeys.h"

#include <QKeySequence>

namespace nubble {

std::optional<QKeyCombination> chosenKeys(const QString &text)
{
    const QKeySequence sequence = QKeySequence::fromString(text, QKeySequence::PortableText);
    if (sequence.count() != 1)
        return std::nullopt;
    const QKeyCombination keys = sequence[0];
    const bool isKnown = keys.key() != Qt::Key_unknown && keys.key() != Qt::Key(0);
    const auto needed = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    return isKnown && (keys.keyboardModifiers() & needed) ? std::optional(keys) : std::nullopt;
}

QString keysText(QKeyCombination keys)
{
    return QKeySequence(keys).toString(QKeySequence::PortableText);
}

} // namespace nubble
