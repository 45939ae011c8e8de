#include "Sessions/TranscriptLines.h"

#include <QByteArrayMatcher>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

#include "Shell/OneLine.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr qsizetype longestText = 4096;
constexpr qsizetype longestTypedPrompt = 200;

// Most lines are none of these: they are told apart without being parsed.
constexpr auto titleMarker = qMakeStaticByteArrayMatcher("\"type\":\"ai-title\"");
constexpr auto customTitleMarker = qMakeStaticByteArrayMatcher("\"type\":\"custom-title\"");
constexpr auto lastPromptMarker = qMakeStaticByteArrayMatcher("\"type\":\"last-prompt\"");
constexpr auto userMarker = qMakeStaticByteArrayMatcher("\"type\":\"user\"");
constexpr auto assistantMarker = qMakeStaticByteArrayMatcher("\"type\":\"assistant\"");
constexpr auto toolResultMarker = qMakeStaticByteArrayMatcher("\"type\":\"tool_result\"");

template <typename Matcher> bool contains(QByteArrayView line, const Matcher &marker)
{
    return marker.indexIn(line.data(), line.size()) >= 0;
}

QJsonObject parseLine(QByteArrayView line)
{
    const QByteArray bytes = QByteArray::fromRawData(line.data(), line.size());
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error == QJsonParseError::IllegalUTF8String)
        return QJsonDocument::fromJson(QString::fromLatin1(bytes).toUtf8()).object();
    return document.object();
}

QString shortened(const QString &text, qsizetype length)
{
    if (text.size() <= length)
        return text;
    return text.left(text.at(length - 1).isHighSurrogate() ? length - 1 : length);
}

std::optional<QString> shortLine(const QString &text, qsizetype longest)
{
    const QString line = oneLine(shortened(oneLine(text), longest));
    return line.isEmpty() ? std::nullopt : std::optional(line);
}

constexpr auto interruption = "[Request interrupted by user"_L1;

// What Claude Code itself puts in the place of a prompt: commands, their output, notices.
bool isWrapper(const QString &text)
{
    constexpr std::array wrappers{
        "<command-"_L1,         "<local-command-"_L1, "<bash-"_L1, "<task-notification>"_L1,
        "<system-reminder>"_L1, "<ide_"_L1,           interruption};
    const QStringView start = QStringView(text).trimmed();
    return std::any_of(wrappers.begin(), wrappers.end(), [&](auto each) { return start.startsWith(each); });
}

std::optional<QString> promptIn(const QJsonValue &content)
{
    if (content.isString())
        return isWrapper(content.toString()) ? std::nullopt
                                             : shortLine(content.toString(), longestTypedPrompt);
    for (const QJsonValue item : content.toArray()) {
        if (item["type"_L1] != "text"_L1)
            continue;
        const QString text = item["text"_L1].toString();
        if (auto prompt = isWrapper(text) ? std::nullopt : shortLine(text, longestTypedPrompt))
            return prompt;
    }
    return std::nullopt;
}

QJsonValue contentOf(const QJsonObject &line)
{
    return line.value("message"_L1).toObject().value("content"_L1);
}

// Another conversation than the user's: of an agent, or with Claude Code itself.
bool isAside(const QJsonObject &line)
{
    return line.value("isMeta"_L1).toBool() || line.value("isSidechain"_L1).toBool();
}

std::optional<QString> typedPromptIn(const QJsonObject &line)
{
    if (line.value("type"_L1) != "user"_L1 || isAside(line) || line.value("isCompactSummary"_L1).toBool()
        || line.contains("toolUseResult"_L1))
        return std::nullopt;
    return promptIn(contentOf(line));
}

bool isInterruption(const QJsonObject &line)
{
    const QJsonValue content = contentOf(line);
    const QJsonValue text = content.isArray() ? content[0]["text"_L1] : content;
    return text.toString().startsWith(interruption);
}

std::optional<TranscriptEnd> endOfReply(const QJsonObject &line)
{
    if (line.value("type"_L1) != "assistant"_L1 || isAside(line))
        return std::nullopt;
    const QJsonArray content = contentOf(line).toArray();
    for (const QJsonValue part : content)
        if (part["type"_L1] == "tool_use"_L1)
            return TranscriptEnd{
                TranscriptEnd::Kind::Asked,
                shortLine(part["input"_L1]["questions"_L1][0]["question"_L1].toString(), longestText)};
    const QString reason = line.value("message"_L1)["stop_reason"_L1].toString();
    if (reason.isEmpty())
        return TranscriptEnd{TranscriptEnd::Kind::Speaking};
    return TranscriptEnd{
        reason == "tool_use"_L1 ? TranscriptEnd::Kind::Asked : TranscriptEnd::Kind::Answered};
}

void lookAtUserLine(QByteArrayView line, TranscriptValues &values)
{
    const auto endWith = [&values](TranscriptEnd::Kind kind) {
        if (!values.end)
            values.end = TranscriptEnd{kind};
    };
    if (contains(line, toolResultMarker)) {
        endWith(TranscriptEnd::Kind::Asked);
        return;
    }
    if (values.end && values.lastPrompt)
        return;
    const QJsonObject object = parseLine(line);
    const std::optional<QString> prompt = typedPromptIn(object);
    if (prompt)
        endWith(TranscriptEnd::Kind::Asked);
    else if (isInterruption(object))
        endWith(TranscriptEnd::Kind::Answered);
    values.lastPrompt = values.lastPrompt ? values.lastPrompt : prompt;
}

void lookAt(QByteArrayView line, TranscriptValues &values)
{
    if (!values.title && contains(line, titleMarker))
        values.title = field(line, "aiTitle"_L1);
    if (!values.title && contains(line, customTitleMarker))
        values.title = field(line, "customTitle"_L1);
    if (!values.lastPrompt && contains(line, lastPromptMarker))
        values.lastPrompt = field(line, "lastPrompt"_L1);
    if (contains(line, userMarker))
        lookAtUserLine(line, values);
    if (!values.end && contains(line, assistantMarker))
        values.end = endOfReply(parseLine(line));
}

bool isComplete(const TranscriptValues &values)
{
    return values.title && values.lastPrompt && values.end;
}

} // namespace

void findNewest(QByteArrayView lines, TranscriptValues &values)
{
    while (!lines.isEmpty() && !isComplete(values)) {
        const qsizetype lineBreak = lines.lastIndexOf('\n');
        lookAt(lines.sliced(lineBreak + 1), values);
        lines = lines.first(std::max<qsizetype>(lineBreak, 0));
    }
}

std::optional<QString> field(QByteArrayView line, QLatin1String key)
{
    const QJsonValue value = parseLine(line).value(key);
    return value.isString() ? shortLine(value.toString(), longestText) : std::nullopt;
}

std::optional<QString> typedPrompt(QByteArrayView line)
{
    return contains(line, toolResultMarker) ? std::nullopt : typedPromptIn(parseLine(line));
}

} // namespace nubble
