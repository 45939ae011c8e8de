#include "Widgets/CardMetrics.h"

#include <QLabel>
#include <QRegularExpression>

#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

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

QString breakable(QString text)
{
    static const QRegularExpression tooLong(u"(\\S{30})"_s);
    return text.replace(tooLong, u"\\1\u200b"_s);
}

} // namespace nubble::CardMetrics
