#include "Ask/AskTexts.h"

#include "Ask/ScreenContext.h"

using namespace Qt::StringLiterals;

namespace nubble {

std::optional<QString> chipText(const std::optional<ScreenContext> &screen, bool capturing)
{
    if (capturing)
        return u"Looking at your screen…"_s;
    if (!screen)
        return std::nullopt;
    const QString label = screen->label();
    if (screen->jpeg)
        return label.isEmpty() ? u"Your screen"_s : label;
    return label.isEmpty() ? u"No screenshot"_s : u"No screenshot · "_s + label;
}

QString invitation(const std::optional<ScreenContext> &screen, bool capturing)
{
    return capturing || (screen && screen->jpeg)
        ? u"Claude can see your screen. Ask about whatever's on it."_s
        : u"Ask Claude anything."_s;
}

QStringList suggestions()
{
    return {u"Explain what I'm looking at"_s, u"Improve this writing"_s, u"What should I do next here?"_s};
}

} // namespace nubble
