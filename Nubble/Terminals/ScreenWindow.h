#pragma once

#include "Terminals/TerminalPane.h"
#include "Terminals/TerminalVariables.h"

namespace nubble {

// A window of a GNU screen session.
class ScreenWindow : public TerminalPane {
public:
    ScreenWindow(QString screen, TerminalVariables::Screen place)
        : m_screen(std::move(screen)), m_place(std::move(place))
    {
    }

    void select() const override;
    [[nodiscard]] bool isSelected() const override;

private:
    QString m_screen; // the program
    TerminalVariables::Screen m_place;
};

} // namespace nubble
