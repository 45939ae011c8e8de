#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <sys/types.h>

namespace nubble {

// What the environment of a process says of the terminal that it was started in. Foreign input: each part is
// there only where it has the form that it should have, and may still be out of date, since processes hand it
// on to whatever they start. A plain value.
struct TerminalVariables {
    struct Tmux {
        QString socket; // absolute path
        pid_t server = 0;
        QString pane; // such as "%3"
    };
    struct Screen {
        QString session; // such as "4242.work"
        pid_t server = 0;
        int window = 0;
    };
    struct Konsole {
        QString service, window; // a bus name and an object's path
        int session = 0;
    };
    struct Kitty {
        QString socket; // such as "unix:/tmp/kitty"
        pid_t process = 0;
        quint32 window = 0;
    };

    quint32 window = 0; // the desktop's number for it; 0: unknown
    bool isWayland = false;
    std::optional<Tmux> tmux{};
    std::optional<Screen> screen{};
    std::optional<Konsole> konsole{};
    std::optional<Kitty> kitty{}; // only where it takes requests
};

// Of "NAME=value" texts with a null byte behind each. A pure function.
[[nodiscard]] TerminalVariables terminalVariables(const QByteArray &environment);

} // namespace nubble
