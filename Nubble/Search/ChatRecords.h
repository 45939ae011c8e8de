#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace nubble {

// What the chat index tells, as it tells it.

struct ChatHit {
    QString id;
    QString source; // "code" for a Claude Code session
    QString title;
    QString project;
    QString category;
    QStringList tags;
    QString updated;
    bool starred = false;
    QString snippet;
    std::optional<QString> url{};    // of the chat on the web
    std::optional<QString> appUrl{}; // of the same in the desktop application
    std::optional<QString> resume{}; // the shell command that goes on with a session

    bool operator==(const ChatHit &) const = default;
};

struct SearchResponse {
    QList<ChatHit> results;
    QMap<QString, QStringList> corrected; // words as they were typed, and what was searched instead

    bool operator==(const SearchResponse &) const = default;
};

struct ChatThread {
    struct Message {
        bool me = false; // the user's own
        QString text;

        bool operator==(const Message &) const = default;
    };

    QString id;
    QString source;
    QString title;
    QString updated;
    QList<Message> messages;
    QList<qsizetype> hits; // places in `messages` that match the query
    std::optional<QString> url{};
    std::optional<QString> appUrl{};
    std::optional<QString> resume{};

    bool operator==(const ChatThread &) const = default;
};

struct ChatCategory {
    QString category;
    qint64 count = 0;

    bool operator==(const ChatCategory &) const = default;
};

} // namespace nubble
