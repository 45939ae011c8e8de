#pragma once

#include <QKeyCombination>
#include <QString>

#include <optional>

namespace nubble {

// A key combination that a user has chosen for everywhere on the desktop, written such as "Ctrl+Alt+N". None
// for what is not one key with Ctrl, Alt or Meta: as a global one it would be taken from every text. Pure.
[[nodiscard]] std::optional<QKeyCombination> chosenKeys(const QString &text);

[[nodiscard]] QString keysText(QKeyCombination keys); // written so

} // namespace nubble
