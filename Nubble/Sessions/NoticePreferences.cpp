#include "Sessions/NoticePreferences.h"

#include "Shell/Defaults.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

const auto waitingKey = u"notifications.waiting"_s;
const auto doneKey = u"notifications.done"_s;
constexpr double longestRun = 1e6; // in seconds, of those that can be asked for

} // namespace

NoticePreferences NoticePreferences::in(const Defaults &defaults)
{
    NoticePreferences preferences;
    preferences.waiting = defaults.boolean(waitingKey).value_or(preferences.waiting);
    preferences.done = defaults.boolean(doneKey).value_or(preferences.done);
    preferences.sound = defaults.boolean(u"notifications.sound"_s).value_or(preferences.sound);
    const double seconds = defaults.number(u"notifications.doneAfter"_s).value_or(-1);
    if (seconds >= 0 && seconds <= longestRun)
        preferences.doneAfter = std::chrono::round<std::chrono::milliseconds>(seconds * 1.0s);
    return preferences;
}

void NoticePreferences::setOn(Defaults &defaults, bool on)
{
    defaults.set(waitingKey, on);
    defaults.set(doneKey, on);
}

} // namespace nubble
