#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <optional>

namespace nubble {

// The format of preference files, as Qt's QSettings writes it: "key=value" lines in the section [General], or
// above all sections; other sections are none of ours. Keys and values are held as they are written there; an
// entry never goes beyond its line. Pure functions; any thread.
namespace IniText {

[[nodiscard]] QByteArray keyOf(const QString &name);
[[nodiscard]] QByteArray valueOf(const QString &text);
// None for a list, and for what stands for something else than a text, such as "@ByteArray(…)".
[[nodiscard]] std::optional<QString> textOf(const QByteArray &value);

[[nodiscard]] QMap<QByteArray, QByteArray> valuesIn(const QByteArray &file); // by key; the last one counts
[[nodiscard]] bool holdsObjects(const QByteArray &file);                     // serialised by some program

// The file with that value; all else in it stays, byte for byte, comments and what is not understood
// included.
[[nodiscard]] QByteArray withValue(const QByteArray &file, const QByteArray &key, const QByteArray &value);

} // namespace IniText

} // namespace nubble
