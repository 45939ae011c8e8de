#include "Sessions/SessionParsing.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <limits>

#include "Shell/OneLine.h"

namespace nubble {

namespace {

// Reads the keys of one object; a key of the wrong type spoils the whole.
class Fields {
public:
    explicit Fields(QJsonObject object) : m_object(std::move(object)) { }

    std::optional<QString> text(QLatin1String key)
    {
        const QJsonValue found = value(key, QJsonValue::String);
        return found.isString() ? std::optional(found.toString()) : std::nullopt;
    }

    std::optional<double> number(QLatin1String key)
    {
        const QJsonValue found = value(key, QJsonValue::Double);
        m_valid = m_valid && std::isfinite(found.toDouble());
        return found.isDouble() ? std::optional(found.toDouble()) : std::nullopt;
    }

    // The same of keys that are young: of another type they are as good as absent.
    std::optional<QString> textIfAny(QLatin1String key) const
    {
        const QJsonValue found = m_object.value(key);
        return found.isString() ? std::optional(found.toString()) : std::nullopt;
    }

    std::optional<double> numberIfAny(QLatin1String key) const
    {
        const double found = m_object.value(key).toDouble(qQNaN());
        return std::isfinite(found) ? std::optional(found) : std::nullopt;
    }

    template <typename T> T required(const std::optional<T> &found)
    {
        m_valid = m_valid && found;
        return found.value_or(T());
    }

    qint32 processId(double number)
    {
        using Limits = std::numeric_limits<qint32>;
        const bool fits = number >= Limits::min() && number <= Limits::max() && std::trunc(number) == number;
        m_valid = m_valid && fits;
        return fits ? static_cast<qint32>(number) : 0;
    }

    [[nodiscard]] bool isValid() const { return m_valid; }

private:
    QJsonValue value(QLatin1String key, QJsonValue::Type type)
    {
        QJsonValue found = m_object.value(key);
        m_valid = m_valid && (found.type() == type || found.isNull() || found.isUndefined());
        return found;
    }

    QJsonObject m_object;
    bool m_valid = true;
};

} // namespace

std::optional<ClaudeSession> decodeSession(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject())
        return std::nullopt;
    Fields fields(document.object());
    ClaudeSession session{
        .pid = fields.processId(fields.required(fields.number(QLatin1String("pid")))),
        .sessionId = fields.required(fields.text(QLatin1String("sessionId"))),
        .cwd = fields.required(fields.text(QLatin1String("cwd"))),
        .startedAt = fields.required(fields.number(QLatin1String("startedAt"))),
        .name = fields.text(QLatin1String("name")),
        .status = fields.text(QLatin1String("status")),
        .updatedAt = fields.number(QLatin1String("updatedAt")),
        .entrypoint = fields.text(QLatin1String("entrypoint")),
        .nameSource = fields.text(QLatin1String("nameSource")),
        .procStart = fields.textIfAny(QLatin1String("procStart")),
        .statusUpdatedAt = fields.numberIfAny(QLatin1String("statusUpdatedAt")),
        .waitingFor = fields.textIfAny(QLatin1String("waitingFor")),
    };
    for (std::optional<QString> *text : {&session.name, &session.waitingFor})
        if (*text)
            *text = oneLine(**text);
    return fields.isValid() ? std::optional(std::move(session)) : std::nullopt;
}

} // namespace nubble
