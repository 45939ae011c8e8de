#include "Ask/ClaudeProtocol.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "Ask/ScreenContext.h"

using namespace Qt::StringLiterals;

namespace nubble::ClaudeProtocol {

namespace {

QString systemPrompt()
{
    return u"You are Claude, opened from a small panel at the edge of the user's Linux screen. A message may "
           u"come "
           u"with a screenshot of their screen, taken the moment they asked, and the name of the app and "
           u"window in "
           u"front. Treat it as context: \"this\", \"here\", \"this doc\" or \"this page\" mean what is on "
           u"screen. "
           u"Read the relevant part of the screenshot carefully and quote it when useful. Answer directly "
           u"and "
           u"briefly, in short Markdown. You cannot click, type or change anything on their screen; if they "
           u"want an "
           u"edit, write the new text for them to paste."_s;
}

std::optional<QString> stringIn(const QJsonObject &object, QLatin1String key)
{
    const QJsonValue value = object.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

decltype(Event::content) deltaIn(const QJsonObject &streamEvent)
{
    if (streamEvent.value("type"_L1) != "content_block_delta"_L1)
        return {};
    const QJsonObject delta = streamEvent.value("delta"_L1).toObject();
    if (delta.value("type"_L1) != "text_delta"_L1)
        return {};
    const std::optional<QString> text = stringIn(delta, "text"_L1);
    return text ? decltype(Event::content)(TextDelta{*text}) : std::monostate();
}

decltype(Event::content) replyIn(const QJsonObject &message)
{
    QStringList texts;
    const QJsonArray blocks = message.value("content"_L1).toArray();
    for (const auto &block : blocks)
        if (block["type"_L1] == "text"_L1 && block["text"_L1].isString())
            texts.append(block["text"_L1].toString());
    const QString text = texts.join("\n\n"_L1);
    return text.isEmpty() ? decltype(Event::content)() : Reply{text, message.value("id"_L1).toString()};
}

TurnEnd turnEndIn(const QJsonObject &event)
{
    if (event.value("is_error"_L1) != true)
        return {};
    if (const auto text = stringIn(event, "result"_L1))
        return {text};
    const QStringList errors = event.value("errors"_L1).toVariant().toStringList();
    if (!errors.isEmpty())
        return {errors.join(u'\n')};
    return {stringIn(event, "subtype"_L1).value_or(u"unknown error"_s)};
}

} // namespace

QStringList arguments(const std::optional<QString> &resumed)
{
    QStringList all{
        u"-p"_s,
        u"--input-format"_s,
        u"stream-json"_s,
        u"--output-format"_s,
        u"stream-json"_s,
        u"--verbose"_s,
        u"--include-partial-messages"_s,
        u"--model"_s,
        u"sonnet"_s,
        u"--tools"_s,
        u""_s, // none
        u"--strict-mcp-config"_s,
        u"--setting-sources"_s,
        u""_s, // none
        u"--append-system-prompt"_s,
        systemPrompt(),
    };
    if (resumed)
        all << u"--resume"_s << *resumed;
    return all;
}

QString promptOf(const QString &text, const std::optional<ScreenContext> &screen)
{
    const QString label = screen ? screen->label() : QString();
    if (label.isEmpty())
        return text;
    const QString suffix = screen->jpeg ? QString() : u" (no screenshot available)"_s;
    return u"[On screen: "_s + label + suffix + u"]\n\n"_s + text;
}

QByteArray turn(const QString &text, const std::optional<ScreenContext> &screen)
{
    QJsonArray blocks;
    if (screen && screen->jpeg)
        blocks.append(QJsonObject{
            {u"type"_s, u"image"_s},
            {u"source"_s,
             QJsonObject{
                 {u"type"_s, u"base64"_s},
                 {u"media_type"_s, u"image/jpeg"_s},
                 {u"data"_s, QString::fromLatin1(screen->jpeg->toBase64())}}}});
    blocks.append(QJsonObject{{u"type"_s, u"text"_s}, {u"text"_s, promptOf(text, screen)}});
    const QJsonObject message{{u"role"_s, u"user"_s}, {u"content"_s, blocks}};
    return QJsonDocument({{u"type"_s, u"user"_s}, {u"message"_s, message}}).toJson(QJsonDocument::Compact)
        + '\n';
}

std::optional<Event> decode(const QByteArray &line)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject())
        return std::nullopt;
    const QJsonObject object = document.object();
    Event event{.sessionId = stringIn(object, "session_id"_L1), .content = {}};
    const QString type = object.value("type"_L1).toString();
    if (type == "stream_event"_L1)
        event.content = deltaIn(object.value("event"_L1).toObject());
    else if (type == "assistant"_L1)
        event.content = replyIn(object.value("message"_L1).toObject());
    else if (type == "result"_L1)
        event.content = turnEndIn(object);
    return event;
}

} // namespace nubble::ClaudeProtocol
