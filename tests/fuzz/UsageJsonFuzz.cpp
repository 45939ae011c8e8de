#include <cmath>

#include "Usage/UsageJson.h"
#include "Usage/UsageTexts.h"

using namespace nubble;

// Whatever a usage answer holds, there are windows that can be shown, or none.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QDateTime now = QDateTime::fromMSecsSinceEpoch(1'790'000'000'000);
    const auto windows =
        parseUsageJson(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    if (!windows)
        return 0;
    if (!windows->session && !windows->weekly)
        qFatal("an answer without a window");
    for (const auto &window : {windows->session, windows->weekly}) {
        if (!window)
            continue;
        const int percent = percentOf(window->fraction);
        if (!std::isfinite(window->fraction) || percent < 0 || percent > 100)
            qFatal("a fraction that cannot be shown");
        if (resetText(window->resetsAt, now).isEmpty() == window->resetsAt.has_value())
            qFatal("a date without a text, or a text without a date");
    }
    return 0;
}
