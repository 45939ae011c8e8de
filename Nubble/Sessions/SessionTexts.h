#pragma once

#include <QString>

#include "Platform/Clock.h"
#include "Sessions/ClaudeSession.h"
#include "Sessions/RunState.h"
#include "Sessions/SessionDetail.h"

namespace nubble {

// What the list of sessions says about one of them. Pure; any thread.
[[nodiscard]] QString rowTitle(const ClaudeSession &session, const SessionDetail &detail); // one line

// Whether the title is a folder's name, or made of it, rather than something that was written.
[[nodiscard]] bool isTitleIdentifier(const ClaudeSession &session, const SessionDetail &detail);

// What a session that waits asks of the user, as far as it tells; one line.
[[nodiscard]] std::optional<QString> questionOf(const ClaudeSession &session, const SessionDetail &detail);
[[nodiscard]] QString rowWord(RunState state);
[[nodiscard]] QString rowSymbol(const ClaudeSession &session);
[[nodiscard]] QString elapsedText(TimePoint since, TimePoint now);
[[nodiscard]] QString stateName(RunState state); // for scripts

} // namespace nubble
