#include "Widgets/CardMetrics.h"

#include <QLabel>

#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

namespace nubble::CardMetrics {

QLabel *makeNote()
{
    auto *note = new QLabel;
    note->setFont(Typography::cardBody());
    note->setWordWrap(true);
    note->setTextFormat(Qt::PlainText);
    QPalette palette = note->palette();
    palette.setColor(QPalette::WindowText, Palette::textSecondary);
    note->setPalette(palette);
    return note;
}

} // namespace nubble::CardMetrics
