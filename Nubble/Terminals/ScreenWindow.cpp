#include "Terminals/ScreenWindow.h"

#include "Terminals/TerminalCommand.h"

using namespace Qt::StringLiterals;

namespace nubble {

void ScreenWindow::select() const
{
    (void)terminalAnswer(
        m_screen, {u"-S"_s, m_place.session, u"-X"_s, u"select"_s, QString::number(m_place.window)});
}

bool ScreenWindow::isSelected() const
{
    const auto answer = terminalAnswer(m_screen, {u"-S"_s, m_place.session, u"-Q"_s, u"number"_s});
    return !answer
        || answer->startsWith(QByteArray(QByteArray::number(m_place.window) + ' ')); // "1 (its title)"
}

} // namespace nubble
