#include "Terminals/TmuxPane.h"

#include <algorithm>
#include <tuple>
#include <unistd.h>

#include "Terminals/TerminalCommand.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

// Lines of words; those with another number of them are left out.
QList<QStringList> rows(const std::optional<QByteArray> &answer, qsizetype words)
{
    QList<QStringList> rows;
    for (const QString &line : QString::fromUtf8(answer.value_or(QByteArray())).split(u'\n'))
        if (const QStringList row = line.split(u' '); row.size() == words)
            rows.append(row);
    return rows;
}

} // namespace

QList<TmuxPlace> TmuxServer::places() const
{
    QList<TmuxPlace> places;
    const auto answer = ask({u"list-panes"_s, u"-a"_s, u"-F"_s, u"#{pane_id} #{session_id} #{window_id}"_s});
    for (const QStringList &row : rows(answer, 3))
        if (row.at(0) == m_place.pane)
            places.append({row.at(1), row.at(2)});
    return places;
}

QList<TmuxClient> TmuxServer::clients(const QList<TmuxPlace> &places) const
{
    const QString format =
        u"#{client_control_mode} #{client_pid} #{client_name} #{client_activity} #{session_id} #{pane_id}"_s;
    QList<TmuxClient> clients;
    for (const QStringList &row : rows(ask({u"list-clients"_s, u"-F"_s, format}), 6))
        if (row.at(0) == u'0') // else it is a program that shows nothing itself
            clients.append({row.at(1).toInt(), row.at(2), row.at(3).toLongLong(), row.at(4), row.at(5)});
    const auto rank = [&places](const TmuxClient &client) {
        const bool showsSession = std::ranges::any_of(
            places, [&client](const TmuxPlace &each) { return each.session == client.session; });
        return std::tuple(showsSession, client.lastActive);
    };
    std::ranges::stable_sort(clients, std::greater(), rank);
    return clients;
}

QString TmuxServer::attachCommand(const TmuxPlace &place) const
{
    const bool isDefault = m_place.socket == u"/tmp/tmux-%1/default"_s.arg(::getuid());
    return (isDefault ? u"tmux"_s : u"tmux -S "_s + shellQuoted(m_place.socket)) + u" attach -t "_s
        + shellQuoted(place.session + u':' + place.window + u'.' + m_place.pane);
}

std::optional<QByteArray> TmuxServer::ask(const QStringList &arguments) const
{
    return terminalAnswer(m_tmux, QStringList{u"-S"_s, m_place.socket} + arguments);
}

void TmuxPane::select() const
{
    if (isSelected())
        return; // selecting it again would end its zoom
    const auto shown = std::ranges::find(m_places, m_client.session, &TmuxPlace::session);
    const TmuxPlace &place = shown == m_places.end() ? m_places.first() : *shown;
    QStringList commands;
    if (place.session != m_client.session)
        commands += {u"switch-client"_s, u"-c"_s, m_client.name, u"-t"_s, place.session, u";"_s};
    commands += {u"select-window"_s, u"-t"_s, place.session + u':' + place.window, u";"_s};
    commands += {u"select-pane"_s, u"-t"_s, m_server.pane()};
    (void)m_server.ask(commands);
}

} // namespace nubble
