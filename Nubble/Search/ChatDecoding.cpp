#include "Search/ChatDecoding.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

// Reads values as the types that they must have; the first that has another spoils the whole.
class Decoder {
public:
    [[nodiscard]] bool isSound() const { return m_sound; }

    QString text(const QJsonValue &value)
    {
        m_sound = m_sound && value.isString();
        return value.toString();
    }
    bool flag(const QJsonValue &value)
    {
        m_sound = m_sound && value.isBool();
        return value.toBool();
    }
    qint64 integer(const QJsonValue &value)
    {
        constexpr qint64 none = -1; // both differ for what is no integer
        m_sound = m_sound && value.toInteger(none) == value.toInteger(none - 1);
        return value.toInteger();
    }
    std::optional<QString> optionalText(const QJsonValue &value)
    {
        if (value.isNull() || value.isUndefined())
            return std::nullopt;
        return text(value);
    }
    template <typename Element> auto list(const QJsonValue &value, Element element)
    {
        m_sound = m_sound && value.isArray();
        QList<decltype(element(value))> all;
        const QJsonArray array = value.toArray();
        for (const auto &each : array)
            all.append(element(each));
        return all;
    }
    QStringList texts(const QJsonValue &value)
    {
        return list(value, [this](const QJsonValue &each) { return text(each); });
    }

    ChatHit hit(const QJsonValue &value)
    {
        return {
            .id = text(value["id"_L1]),
            .source = text(value["source"_L1]),
            .title = text(value["title"_L1]),
            .project = text(value["project"_L1]),
            .category = text(value["category"_L1]),
            .tags = texts(value["tags"_L1]),
            .updated = text(value["updated"_L1]),
            .starred = flag(value["starred"_L1]),
            .snippet = text(value["snippet"_L1]),
            .url = optionalText(value["url"_L1]),
            .appUrl = optionalText(value["app_url"_L1]),
            .resume = optionalText(value["resume"_L1]),
        };
    }
    QMap<QString, QStringList> corrections(const QJsonValue &value)
    {
        m_sound = m_sound && value.isObject();
        QMap<QString, QStringList> all;
        const QJsonObject object = value.toObject();
        for (auto each = object.begin(); each != object.end(); ++each)
            all.insert(each.key(), texts(each.value()));
        return all;
    }

private:
    bool m_sound = true;
};

QJsonValue rootOf(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
}

template <typename Answer> std::optional<Answer> soundOnly(const Decoder &decoder, Answer answer)
{
    return decoder.isSound() ? std::optional(std::move(answer)) : std::nullopt;
}

} // namespace

std::optional<SearchResponse> decodeSearch(const QByteArray &json)
{
    Decoder decoder;
    const QJsonValue root = rootOf(json);
    SearchResponse response{
        .results =
            decoder.list(root["results"_L1], [&](const QJsonValue &each) { return decoder.hit(each); }),
        .corrected = decoder.corrections(root["corrected"_L1])};
    return soundOnly(decoder, std::move(response));
}

std::optional<QList<ChatCategory>> decodeCategories(const QByteArray &json)
{
    Decoder decoder;
    auto categories = decoder.list(rootOf(json), [&](const QJsonValue &each) {
        return ChatCategory{decoder.text(each["category"_L1]), decoder.integer(each["count"_L1])};
    });
    return soundOnly(decoder, std::move(categories));
}

std::optional<ChatThread> decodeThread(const QByteArray &json)
{
    Decoder decoder;
    const QJsonValue root = rootOf(json);
    ChatThread thread{
        .id = decoder.text(root["id"_L1]),
        .source = decoder.text(root["source"_L1]),
        .title = decoder.text(root["title"_L1]),
        .updated = decoder.text(root["updated"_L1]),
        .messages = decoder.list(
            root["messages"_L1],
            [&](const QJsonValue &each) {
                return ChatThread::Message{decoder.flag(each["me"_L1]), decoder.text(each["text"_L1])};
            }),
        .hits = decoder.list(
            root["hits"_L1], [&](const QJsonValue &each) { return qsizetype{decoder.integer(each)}; }),
        .url = decoder.optionalText(root["url"_L1]),
        .appUrl = decoder.optionalText(root["app_url"_L1]),
        .resume = decoder.optionalText(root["resume"_L1])};
    thread.hits.removeIf([&](qsizetype place) { return place < 0 || place >= thread.messages.size(); });
    return soundOnly(decoder, std::move(thread));
}

} // namespace nubble
