#include "Widgets/CardHeader.h"

#include <QHBoxLayout>

#include "Widgets/CardMetrics.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;

namespace nubble {

CardHeader::CardHeader(const QString &title, QWidget *parent)
    : QWidget(parent), m_title(title), m_accessories(new QHBoxLayout(this))
{
    m_accessories->setContentsMargins(0, 0, 0, 0);
    m_accessories->setSpacing(0);
    m_accessories->addStretch();
    setContentsMargins(Units::px(this, CardMetrics::rowPadding), 0, 0, 0);
    setFixedHeight(Units::px(this, CardMetrics::headerHeight));
    describe();
}

void CardHeader::setDetail(const QString &detail)
{
    if (m_detail == detail)
        return;
    m_detail = detail;
    describe();
    update();
}

void CardHeader::addAccessory(QWidget *accessory)
{
    m_accessories->addWidget(accessory);
}

void CardHeader::addAccessory(NotchButton *button)
{
    button->setSide(CardMetrics::headerCircle);
    button->setFixedSize(Units::px(this, QSizeF(CardMetrics::headerHeight, CardMetrics::headerHeight)));
    m_accessories->addWidget(button);
}

void CardHeader::describe()
{
    setAccessibleName(m_detail.isEmpty() ? m_title : m_title + u", "_s + m_detail);
}

void CardHeader::paintEvent(QPaintEvent *)
{
    UnitPainter painter(this);
    const QRectF line = painter.area().adjusted(contentsMargins().left() / Units::of(this), 0, 0, 0);
    painter.setFont(Typography::cardTitle());
    painter.setPen(Palette::textPrimary);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, m_title);
    const double titleWidth = painter.fontMetrics().horizontalAdvance(m_title);

    painter.setFont(Typography::cardBody());
    painter.setPen(Palette::textSecondary);
    Typography::drawTabular(painter, line.adjusted(titleWidth + 7, 1, 0, 1), Qt::AlignLeft, m_detail);
}

} // namespace nubble
