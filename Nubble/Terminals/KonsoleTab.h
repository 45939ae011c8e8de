#pragma once

#include "Terminals/TerminalPane.h"
#include "Terminals/TerminalVariables.h"

namespace nubble {

// A tab of Konsole, which is asked over the session bus.
class KonsoleTab : public TerminalPane {
public:
    explicit KonsoleTab(TerminalVariables::Konsole place) : m_place(std::move(place)) { }

    // Whether the bus has that name for that process.
    [[nodiscard]] static bool isServiceOf(pid_t konsole, const QString &service);

    void select() const override;
    [[nodiscard]] bool isSelected() const override;

private:
    TerminalVariables::Konsole m_place;
};

} // namespace nubble
