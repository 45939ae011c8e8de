#pragma once

#include <QMargins>

class QLabel;
class QString;
class QVBoxLayout;
class QWidget;

namespace nubble::CardMetrics {

// What all cards have in common, in units.
inline constexpr int width = 246;
inline constexpr int maxHeight = 460;
inline constexpr int headerHeight = 28;    // what a button in it may be touched in
inline constexpr double headerCircle = 20; // that it shows; with the margins it stands 12 from the rim
inline constexpr int spacing = 6;
inline constexpr QMargins rowMargins{8, 8, 8, 10};                   // around header and rows
inline constexpr int rowPadding = 10;                                // of the rows' own, left and right
inline constexpr QMargins textMargins{rowPadding, 0, rowPadding, 4}; // more, around what is no row
inline constexpr int textWidth = width - 2 * (rowMargins.left() + rowPadding);

// The layout of a card's content, which it gives its width, too.
[[nodiscard]] QVBoxLayout *makeLayout(QWidget *content);

// The height that a part of a card may have, on a screen that leaves so much to the card, where so many units
// of it are for other parts. Device-independent pixels, but for the units.
[[nodiscard]] int roomWithin(const QWidget *content, int room, int others);

// A short text in the card's body type, secondary and wrapped, for what is not a row.
[[nodiscard]] QLabel *makeNote(QWidget *parent);

// A text that others have written, for such a label: it breaks no line within a word, and cuts off a long
// one.
[[nodiscard]] QString breakable(QString text);

} // namespace nubble::CardMetrics
