#pragma once

#include <QImage>
#include <QString>

namespace nubble {

// What one side of a conversation has said.
struct ThreadMessage {
    enum class Kind { Question, Reply }; // a bubble with plain text; Markdown over the whole width

    Kind kind = Kind::Question;
    QString text;
    QImage picture;  // a thumbnail shown with a question; may be null
    QString caption; // shown below a question, elided; may be empty
};

} // namespace nubble
