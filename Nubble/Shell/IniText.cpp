#include "Shell/IniText.h"

#include <QByteArrayView>
#include <QList>
#include <QStringConverter>

using namespace Qt::StringLiterals;

namespace nubble::IniText {

namespace {

constexpr QByteArrayView letters("abfnrtv\"?'\\"); // behind a backslash …
constexpr QByteArrayView meanings("\a\b\f\n\r\t\v\"?'\\");
constexpr QByteArrayView writtenLetters("abfnrtv\"\\"); // … of which these are written

struct Entry {
    QByteArrayView key;
    QByteArrayView value; // without a comment behind it
};

// What the section [General] holds.
struct General {
    QList<Entry> entries;
    qsizetype end = -1; // behind the line of its last entry, or of its header
};

// A semicolon begins a comment, but not within quotes.
QByteArrayView withoutComment(QByteArrayView value)
{
    bool isQuoted = false;
    for (qsizetype at = 0; at < value.size(); ++at) {
        if (value[at] == '\\')
            ++at;
        else if (value[at] == '"')
            isQuoted = !isQuoted;
        else if (value[at] == ';' && !isQuoted)
            return value.first(at);
    }
    return value;
}

bool isGeneralHeader(QByteArrayView line)
{
    const qsizetype close = line.indexOf(']');
    const QByteArrayView name = close < 0 ? line.sliced(1) : line.first(close).sliced(1);
    return name.trimmed().compare("general", Qt::CaseInsensitive) == 0;
}

General generalOf(QByteArrayView file)
{
    General found;
    bool isGeneral = true;
    for (qsizetype at = file.startsWith("\xEF\xBB\xBF") ? 3 : 0; at < file.size();) {
        const qsizetype newline = file.indexOf('\n', at);
        const qsizetype next = newline < 0 ? file.size() : newline + 1;
        const QByteArrayView line = file.first(next).sliced(at).trimmed();
        const qsizetype equals = line.indexOf('=');
        at = next;
        if (line.startsWith('['))
            isGeneral = isGeneralHeader(line);
        else if (line.startsWith(';') || equals < 0)
            continue;
        else if (isGeneral)
            found.entries.append(
                {line.first(equals).trimmed(), withoutComment(line.sliced(equals + 1)).trimmed()});
        if (isGeneral)
            found.end = next;
    }
    return found;
}

int digitOf(char character, int base)
{
    const qsizetype found = QByteArrayView("0123456789abcdefABCDEF").indexOf(character);
    const auto digit = static_cast<int>(found < 16 ? found : found - 6);
    return digit < base ? digit : -1;
}

// What stands behind a backslash, at `at`, which moves on: a letter, or the number of a UTF-16 unit.
QString unescaped(QByteArrayView value, qsizetype &at)
{
    if (at == value.size())
        return {};
    if (const qsizetype letter = letters.indexOf(value[at]); letter >= 0) {
        ++at;
        return QString(QLatin1Char(meanings[letter]));
    }
    const int base = value[at] == 'x' ? 16 : 8;
    const qsizetype first = base == 16 ? at + 1 : at;
    char16_t unit = 0;
    for (at = first; at < value.size() && digitOf(value[at], base) >= 0; ++at)
        unit = static_cast<char16_t>(unit * base + digitOf(value[at], base));
    if (at > first)
        return QString(QChar(unit));
    at = qMax(at, base == 16 ? first : first + 1); // not understood: left out
    return {};
}

// The readable part of a value up to its next backslash, quote or comma.
QByteArrayView plainFrom(QByteArrayView value, qsizetype at)
{
    qsizetype end = at;
    while (end < value.size() && !QByteArrayView("\\\",").contains(value[end]))
        ++end;
    return value.first(end).sliced(at);
}

// None for a list.
std::optional<QString> unquoted(QByteArrayView value)
{
    QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    QString text;
    bool isQuoted = false;
    for (qsizetype at = 0; at < value.size();) {
        const char character = value[at];
        if (character == '\\') {
            text += unescaped(value, ++at);
        } else if (character == '"') {
            isQuoted = !isQuoted;
            ++at;
        } else if (character == ',') {
            if (!isQuoted)
                return std::nullopt;
            text += u',';
            ++at;
        } else {
            const QByteArrayView plain = plainFrom(value, at);
            text += decode(plain);
            at += plain.size();
        }
    }
    return text;
}

void appendEscaped(QByteArray &value, char16_t unit, bool isBehindNumber)
{
    const auto character = static_cast<char>(unit);
    const qsizetype meaning = unit < 0x80 ? meanings.indexOf(character) : -1;
    if (meaning >= 0 && writtenLetters.contains(letters[meaning]))
        (value += '\\') += letters[meaning];
    else if (unit == 0)
        value += "\\0";
    else if (unit < 0x20 || (isBehindNumber && digitOf(character, 16) >= 0))
        value += "\\x" + QByteArray::number(unit, 16);
    else
        value += character;
}

} // namespace

QByteArray keyOf(const QString &name)
{
    QByteArray key;
    for (const QChar character : name) {
        const char16_t unit = character.unicode();
        if (unit < 0x80 && (character.isLetterOrNumber() || u"_-."_s.contains(character)))
            key += static_cast<char>(unit);
        else
            key += (unit <= 0xFF ? "%" : "%U")
                + QByteArray::number(unit, 16).rightJustified(unit <= 0xFF ? 2 : 4, '0').toUpper();
    }
    return key;
}

QByteArray valueOf(const QString &text)
{
    QByteArray value;
    bool isBehindNumber = false; // a digit would be read as one more of its own
    for (qsizetype at = 0; at < text.size();) {
        qsizetype end = at + 1;
        if (text.at(at).unicode() >= 0x80) {
            while (end < text.size() && text.at(end).unicode() >= 0x80) // pairs belong together
                ++end;
            value += QStringView(text).sliced(at, end - at).toUtf8();
            isBehindNumber = false;
        } else {
            const qsizetype before = value.size();
            appendEscaped(value, text.at(at).unicode(), isBehindNumber);
            isBehindNumber = value.sliced(before).startsWith("\\x") || value.sliced(before) == "\\0";
        }
        at = end;
    }
    if (value.startsWith('@'))
        value.prepend('@');
    const bool needsQuotes = value.contains(';') || value.contains(',') || value.contains('=')
        || value.startsWith(' ') || value.endsWith(' ');
    return needsQuotes ? '"' + value + '"' : value;
}

std::optional<QString> textOf(const QByteArray &value)
{
    std::optional<QString> text = unquoted(value);
    if (!text || !text->startsWith(u'@'))
        return text;
    if (text->startsWith(u"@@"))
        return text->sliced(1);
    return text->endsWith(u')') ? std::nullopt : text;
}

QMap<QByteArray, QByteArray> valuesIn(const QByteArray &file)
{
    QMap<QByteArray, QByteArray> values;
    for (const Entry &entry : generalOf(file).entries)
        values.insert(entry.key.toByteArray(), entry.value.toByteArray());
    return values;
}

bool holdsObjects(const QByteArray &file)
{
    return file.contains("@Variant(") || file.contains("@DateTime(");
}

QByteArray withValue(const QByteArray &file, const QByteArray &key, const QByteArray &value)
{
    const General general = generalOf(file);
    for (auto entry = general.entries.crbegin(); entry != general.entries.crend(); ++entry)
        if (entry->key == key) {
            QByteArray changed = file;
            return changed.replace(entry->value.data() - file.constData(), entry->value.size(), value);
        }
    QByteArray changed = file.first(general.end < 0 ? file.size() : general.end);
    const qsizetype rest = changed.size();
    if (!changed.isEmpty() && !changed.endsWith('\n'))
        changed += '\n';
    if (general.end < 0)
        changed += "[General]\n";
    return changed + key + '=' + value + '\n' + file.sliced(rest);
}

} // namespace nubble::IniText
