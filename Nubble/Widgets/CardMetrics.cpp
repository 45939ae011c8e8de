#include "Widgets/CardMetrics.h"

#include <QLabel>
#include <QRegularExpression>
#include <QVBoxLayout>

#include <algorithm>

#include "Widgets/Palette.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;

namespace nubble::CardMetrics {

QVBoxLayout *makeLayout(QWidget *content)
{
    content->setFixedWidth(Units::px(content, width));
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(Units::px(content, rowMargins));
    layout->setSpacing(Units::px(content, spacing));
    return layout;
}

int roomWithin(const QWidget *content, int room, int others)
{
    return std::min(Units::px(content, maxHeight), room) - Units::px(content, others);
}

QLabel *makeNote(QWidget *parent)
{
    auto *note = new QLabel(parent);
    note->setFont(Units::px(parent, Typography::cardBody()));
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
