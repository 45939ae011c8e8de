#pragma once

#include <QMargins>

class QLabel;
class QString;

namespace nubble::CardMetrics {

// What all cards have in common; device-independent pixels.
inline constexpr int width = 246;
inline constexpr int maxHeight = 460;
inline constexpr int headerHeight = 24;
inline constexpr int spacing = 6;
inline constexpr QMargins textMargins{18, 12, 18, 14};
inline constexpr QMargins rowMargins{
    8, 12, 8, 10}; // rows have a padding of their own, as wide as the difference
inline constexpr int rowPadding = textMargins.left() - rowMargins.left();

// A short text in the card's body type, secondary and wrapped, for what is not a row.
[[nodiscard]] QLabel *makeNote();

// A text that others have written, for such a label: it breaks no line within a word, and cuts off a long
// one.
[[nodiscard]] QString breakable(QString text);

} // namespace nubble::CardMetrics
