#pragma once

namespace nubble {

class ThreadView;

// What assistive technology sees of a conversation: a document with a child for each row, made when it is
// asked for, and within it one for each link and button.

void installThreadAccessibility();   // once for all views
void announceLast(ThreadView &view); // the last message, whole
void tellFocus(ThreadView &view);    // what has the keyboard within the view

} // namespace nubble
