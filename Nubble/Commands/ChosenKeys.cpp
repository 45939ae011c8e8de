#include "Commands/ChosenKeys.h"

#include <QKeySequence>

namespace nubble {

std::optional<QKeyCombination> chosenKeys(const QString &text)
{
    const QKeySequence sequence = QKeySequence::fromString(text, QKeySequence::PortableText);
    if (sequence.count() != 1)
        return std::nullopt;
    const QKeyCombination keys = sequence[0];
    const Qt::Key key = keys.key();
    const bool isModifier = key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock;
    const bool isKey = key != Qt::Key_unknown && key != Qt::Key(0) && !isModifier;
    const auto needed = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    return isKey && (keys.keyboardModifiers() & needed) ? std::optional(keys) : std::nullopt;
}

QString keysText(QKeyCombination keys)
{
    return QKeySequence(keys).toString(QKeySequence::PortableText);
}

} // namespace nubble
