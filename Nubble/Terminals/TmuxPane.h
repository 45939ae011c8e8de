#pragma once

#include <QList>

#include "Terminals/TerminalPane.h"
#include "Terminals/TerminalVariables.h"

namespace nubble {

// Where a pane of tmux is: sessions can share a window. Ids as the server gives them, such as "$1" and "@2".
struct TmuxPlace {
    QString session, window;
};

// A terminal that shows a session of tmux.
struct TmuxClient {
    pid_t process = 0;
    QString name;          // the terminal's device
    qint64 lastActive = 0; // seconds since 1970
    QString session, pane; // what it shows
};

// What a server of tmux says of one pane and its clients, by the command tmux. Blocks, a second per question
// at most; worker threads.
class TmuxServer {
public:
    TmuxServer(QString tmux, TerminalVariables::Tmux place)
        : m_tmux(std::move(tmux)), m_place(std::move(place))
    {
    }

    [[nodiscard]] QList<TmuxPlace> places() const;
    // Those that show a session with the pane first, of these the one used last first.
    [[nodiscard]] QList<TmuxClient> clients(const QList<TmuxPlace> &places) const;
    // For the user's shell: shows the pane in the terminal in which it is run.
    [[nodiscard]] QString attachCommand(const TmuxPlace &place) const;

    [[nodiscard]] const QString &pane() const { return m_place.pane; }
    [[nodiscard]] std::optional<QByteArray> ask(const QStringList &arguments) const;

private:
    QString m_tmux; // the program
    TerminalVariables::Tmux m_place;
};

// A pane of tmux as one client shows it.
class TmuxPane : public TerminalPane {
public:
    TmuxPane(TmuxServer server, QList<TmuxPlace> places, TmuxClient client)
        : m_server(std::move(server)), m_places(std::move(places)), m_client(std::move(client))
    {
    }

    void select() const override;
    [[nodiscard]] bool isSelected() const override { return m_client.pane == m_server.pane(); }

private:
    TmuxServer m_server;
    QList<TmuxPlace> m_places; // at least one
    TmuxClient m_client;
};

} // namespace nubble
