#pragma once

#include <QColor>

class QPalette;

namespace nubble::Palette {

// Named colour roles, sRGB. Nothing on the panel is drawn in any other colour.
inline constexpr QColor body{0, 0, 0};
inline constexpr QColor card{19, 19, 21, 240};
inline constexpr QColor cardLine{255, 255, 255, 20};
inline constexpr QColor shadow{0, 0, 0};
inline constexpr QColor control{255, 255, 255, 28}; // fill below a control's symbol
inline constexpr QColor hover{255, 255, 255, 26};   // what the pointer adds to a fill
inline constexpr QColor chosen{255, 255, 255, 52};  // fill of what is selected among others
inline constexpr QColor focus{122, 170, 255};
inline constexpr QColor link{138, 180, 255};
inline constexpr QColor selection{122, 170, 255, 92};    // behind selected text
inline constexpr QColor match{255, 176, 32, 88};         // behind words that were searched
inline constexpr QColor currentMatch{255, 176, 32, 225}; // those of the one that is looked at, in black
inline constexpr QColor bubble{255, 255, 255, 28};       // behind what the user has said
inline constexpr QColor code{255, 255, 255, 13};         // behind a block of code
inline constexpr QColor codeSpan{255, 255, 255, 26};     // behind code within a line
inline constexpr QColor ringTrack{255, 255, 255, 76};
inline constexpr QColor barTrack{255, 255, 255, 60};
inline constexpr QColor thumb{255, 255, 255, 71}; // of a scroll bar at rest
inline constexpr QColor ample{0, 255, 136};
inline constexpr QColor watch{242, 255, 0};
inline constexpr QColor critical{255, 63, 0};
inline constexpr QColor problem{255, 138, 115};       // text that says what went wrong
inline constexpr QColor badge{255, 176, 32};          // something waits for the user
inline constexpr QColor waitingRow{255, 176, 32, 28}; // below a row that does
inline constexpr QColor bronze{232, 152, 108};        // something works
inline constexpr QColor recording{255, 82, 74};       // the microphone is listened to
inline constexpr QColor waveOldest{86, 190, 255};
inline constexpr QColor waveMiddle{150, 122, 255};
inline constexpr QColor waveNewest{255, 105, 180};
inline constexpr QColor quenwick{150, 122, 255};
inline constexpr QColor quenwickText{184, 166, 255}; // the same, light enough to be read
inline constexpr QColor textPrimary{255, 255, 255, 235};
inline constexpr QColor textSecondary{255, 255, 255, 153};

// The same for the menus that the toolkit draws.
[[nodiscard]] QPalette widgets();

} // namespace nubble::Palette
