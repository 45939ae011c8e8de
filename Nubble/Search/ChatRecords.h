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

// What opening a chat does: goes on with its session by that command, else follows the link. Both empty:
// there is nothing to open.
struct ChatTarget {
    QString resume;
    QString link;
};

// Of a hit or a thread.
template <typename Chat> ChatTarget targetOf(const Chat &chat)
{
    const QString appUrl = chat.appUrl.value_or(QString());
    return {
        chat.source == u"code" ? chat.resume.value_or(QString()) : QString(),
        appUrl.isEmpty() ? chat.url.value_or(QString()) : appUrl};
}

struct ChatCategory {
    QString category;
    qint64 count = 0;

    bool operator==(const ChatCategory &) const = default;
};

} // namespace nubble
