#pragma once

#include <QJsonObject>
#include <QString>

namespace nubble {

// What a status bar shows of the status output. Pure functions of it.

// Such as "1 working, 2 idle · 29%".
[[nodiscard]] QString statusLine(const QJsonObject &report);

// The report with what bars ask for by name: "text", the line; "tooltip", a line for each session; "class",
// what all of them together are doing; "percentage" of the plan's session window.
[[nodiscard]] QJsonObject forStatusBars(QJsonObject report);

} // namespace nubble
