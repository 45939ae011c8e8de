#pragma once

#include "Terminals/TerminalPane.h"
#include "Terminals/TerminalVariables.h"

namespace nubble {

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
    [[nodiscard]] QStringList command(const QString &name, const QString &match) const;

    QString m_kitty; // the program
    TerminalVariables::Kitty m_place;
};

} // namespace nubble
