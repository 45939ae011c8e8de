#pragma once

class QKeyEvent;

namespace nubble {

class ThreadScene;

// What a key does in a conversation: the arrows, Page Up and Page Down, Home and End scroll, with Shift they
// mark text; Return activates what has the keyboard; the usual keys copy and mark everything. False: nothing.
[[nodiscard]] bool handleThreadKey(ThreadScene &scene, const QKeyEvent &event);

} // namespace nubble
