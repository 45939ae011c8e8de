#include "Terminals/KittyWindow.h"

#include "Terminals/TerminalCommand.h"

using namespace Qt::StringLiterals;

namespace nubble {

void KittyWindow::select() const
{
    (void)terminalAnswer(m_kitty, command(u"focus-window"_s, {}));
}

bool KittyWindow::isSelected() const
{
    return terminalAnswer(m_kitty, command(u"ls"_s, u" and state:active and state:parent_active"_s))
        .has_value();
}

QStringList KittyWindow::command(const QString &name, const QString &match) const
{
    return {u"@"_s, u"--to"_s, m_place.socket, name, u"--match"_s, u"id:%1"_s.arg(m_place.window) + match};
}

} // namespace nubble
