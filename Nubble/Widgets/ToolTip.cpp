#include "Widgets/ToolTip.h"

#include <QString>

using namespace Qt::StringLiterals;

namespace nubble {

// Escaped and told to be rich, for the toolkit guesses otherwise.
QString toolTipOf(const QString &text)
{
    return text.isEmpty() ? QString() : u"<qt>"_s + text.toHtmlEscaped() + u"</qt>"_s;
}

} // namespace nubble
