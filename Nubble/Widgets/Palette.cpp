#include "Widgets/Palette.h"

#include <QPalette>

namespace nubble::Palette {

QPalette widgets()
{
    constexpr QColor base{30, 30, 33};
    constexpr QColor text{238, 238, 240};
    constexpr QColor dimmed{128, 128, 134};
    QPalette palette(text, base, base.lighter(160), base.darker(160), base.lighter(220), text, base);
    palette.setColor(QPalette::Highlight, QColor(70, 70, 78));
    palette.setColor(QPalette::HighlightedText, text);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, dimmed);
    return palette;
}

} // namespace nubble::Palette
