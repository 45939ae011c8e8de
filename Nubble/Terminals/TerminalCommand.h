#pragma once

#include <QByteArray>
#include <QStringList>

#include <optional>

namespace nubble {

// What a terminal's or multiplexer's own command writes, up to a megabyte, where it succeeds within a
// second. Blocks; worker threads.
[[nodiscard]] std::optional<QByteArray> terminalAnswer(const QString &program, const QStringList &arguments);

// As one word for the user's shell.
[[nodiscard]] QString shellQuoted(QString text);

} // namespace nubble
