#include "Terminals/KittyWindow.h"
#include "Terminals/TerminalVariables.h"

using namespace nubble;

// Whatever the environment of a process holds, what is passed on to other programs is short, plain and
// theirs.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const TerminalVariables variables = terminalVariables(bytes);
    if (variables.tmux && !(variables.tmux->socket.startsWith(u'/') && variables.tmux->pane.startsWith(u'%')))
        qFatal("a socket or pane of another form");
    if (variables.kitty && !variables.kitty->socket.startsWith(QStringLiteral("unix:")))
        qFatal("a socket that may be another machine's");
    if (variables.screen && variables.screen->session.contains(u'/'))
        qFatal("a session that is a path");
    (void)isKittyWindowFocused(bytes, 3);
    return 0;
}
