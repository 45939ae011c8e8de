#include "Terminals/KittyWindow.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>

#include "Terminals/TerminalCommand.h"

using namespace Qt::StringLiterals;

namespace nubble {

void KittyWindow::select() const
{
    (void)ask({u"focus-window"_s, u"--match"_s, u"id:%1"_s.arg(m_place.window)});
}

bool KittyWindow::isSelected() const
{
    const auto answer = ask({u"ls"_s});
    return !answer || isKittyWindowFocused(*answer, m_place.window);
}

std::optional<QByteArray> KittyWindow::ask(const QStringList &words) const
{
    return terminalAnswer(m_kitty, QStringList{u"@"_s, u"--to"_s, m_place.socket} + words);
}

bool isKittyWindowFocused(const QByteArray &listing, quint32 window)
{
    const auto isFocused = [](const QJsonValue &each) { return each[u"is_focused"].toBool(); };
    const QJsonDocument document = QJsonDocument::fromJson(listing);
    for (const auto &desktopWindow : document.array())
        for (const auto &tab : desktopWindow[u"tabs"].toArray())
            for (const auto &each : tab[u"windows"].toArray())
                if (each[u"id"].toInteger() == window)
                    return isFocused(tab) && isFocused(each);
    return false;
}

} // namespace nubble
