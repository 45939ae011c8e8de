#pragma once

#include "Ask/AskClaude.h"

namespace nubble {

// "Q: …" and "A: …" of each message, and what the user is told at the end.
inline QString printed(const AskClaude &ask)
{
    using namespace Qt::StringLiterals;
    QStringList lines;
    for (const AskMessage &message : ask.messages())
        lines.append((message.role == AskMessage::Role::User ? "Q: "_L1 : "A: "_L1) + message.text);
    if (ask.problem())
        lines.append("! "_L1 + *ask.problem());
    return lines.join(u'|');
}

} // namespace nubble
