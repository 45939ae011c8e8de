#include "Terminals/TerminalCommand.h"

#include "Shell/Command.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

std::optional<QByteArray> terminalAnswer(const QString &program, const QStringList &arguments)
{
    constexpr CommandLimits limits{.output = 1 << 20, .time = 1s};
    const CommandEnd end = runCommand({program, arguments}, {}, limits);
    const bool isDone = end.kind == CommandEnd::Kind::Exited && end.code == 0;
    return isDone ? std::optional(end.output) : std::nullopt;
}

QString shellQuoted(QString text)
{
    return u'\'' + text.replace(u'\'', "'\\''"_L1) + u'\'';
}

} // namespace nubble
