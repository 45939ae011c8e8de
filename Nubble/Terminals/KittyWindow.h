#pragma once

#include "Terminals/TerminalPane.h"
#include "Terminals/TerminalVariables.h"

namespace nubble {

// Of what kitty lists: whether the window is the one with the focus in the tab with the focus. A pure
// function.
[[nodiscard]] bool isKittyWindowFocused(const QByteArray &listing, quint32 window);

// One of the windows that kitty has in its tabs, by its remote control.
class KittyWindow : public TerminalPane {
public:
    KittyWindow(QString kitty, TerminalVariables::Kitty place)
        : m_kitty(std::move(kitty)), m_place(std::move(place))
    {
    }

    void select() const override;
    [[nodiscard]] bool isSelected() const override;

private:
    [[nodiscard]] std::optional<QByteArray> ask(const QStringList &words) const;

    QString m_kitty; // the program
    TerminalVariables::Kitty m_place;
};

} // namespace nubble
