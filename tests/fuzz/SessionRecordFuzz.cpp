#include "Platform/Clock.h"
#include "Sessions/ClaudeSession.h"
#include "Sessions/SessionParsing.h"
#include "Sessions/SessionTexts.h"

using namespace nubble;

// Whatever a record holds, it is a session that can be shown, or none.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto session =
        decodeSession(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    if (!session)
        return 0;
    if (*session != *session)
        qFatal("a session that differs from itself would be published at every poll");
    if (elapsedText(timePointOf(session->lastActivity()), timePointOf(1.79e12)).isEmpty())
        qFatal("a session without a time");
    static_cast<void>(rowTitle(*session, {}));
    return 0;
}
