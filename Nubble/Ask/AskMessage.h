#pragma once

#include <QImage>
#include <QString>
#include <QUuid>

#include <optional>

namespace nubble {

// One side of a turn, as it is shown.
struct AskMessage {
    enum class Role { User, Assistant };

    QUuid id = QUuid::createUuid();
    Role role = Role::User;
    QString text;                     // what the user typed; the reply so far, Markdown
    QImage thumbnail{};               // of the picture that went with a question
    std::optional<QString> context{}; // what was in front then

    bool operator==(const AskMessage &) const = default;
};

} // namespace nubble
