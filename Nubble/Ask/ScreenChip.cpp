#include "Ask/ScreenChip.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include "Ask/AskTexts.h"
#include "Placement/WindowPlacement.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"
#include "Widgets/Symbols.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int chipHeight = 28;
constexpr double radius = 8;
constexpr int padding = 5;
constexpr QSize pictureSize(28, 18);
constexpr QSize previewSize(384, 384);

void drawRounded(QPainter &painter, const QRectF &rect, double corner, const QImage &picture)
{
    QPainterPath outline;
    outline.addRoundedRect(rect, corner, corner);
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setClipPath(outline);
    const QSizeF whole = QSizeF(picture.size()).scaled(rect.size(), Qt::KeepAspectRatioByExpanding);
    QRectF target({}, whole);
    target.moveCenter(rect.center());
    painter.drawImage(target, picture);
    painter.setClipping(false);
    painter.setPen(QPen(Palette::cardLine, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(outline);
    painter.restore();
}

// The picture alone, above the chip and never in the pointer's way.
class PicturePreview : public QWidget {
public:
    PicturePreview(const QImage &picture, QWidget *parent)
        : QWidget(parent, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput)
    {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_DeleteOnClose);
        const QSize size = picture.size().scaled(previewSize, Qt::KeepAspectRatio);
        m_picture =
            picture.scaled(size * devicePixelRatioF(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        resize(size.expandedTo({1, 1}));
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.drawImage(rect(), m_picture);
        painter.setPen(QPen(Palette::ringTrack, 1));
        painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    }

private:
    QImage m_picture;
};

} // namespace

ScreenChip::ScreenChip(QWidget *parent)
    : QWidget(parent), m_remove(new NotchButton(u"xmark.circle.fill"_s, u"Don't send the screen"_s))
{
    setFixedHeight(chipHeight);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, padding, 0);
    layout->addStretch();
    layout->addWidget(m_remove);
    m_remove->setTint(Palette::textSecondary);
    connect(m_remove, &QAbstractButton::clicked, this, &ScreenChip::removed);
    hide();
}

void ScreenChip::show(const std::optional<ScreenContext> &screen, bool capturing)
{
    const std::optional<QString> text = chipText(screen, capturing);
    m_text = text.value_or(QString());
    m_picture = !capturing && screen ? screen->thumbnail : QImage();
    m_jpeg = !capturing && screen ? screen->jpeg.value_or(QByteArray()) : QByteArray();
    m_remove->setVisible(!capturing);
    setAccessibleName(m_text);
    setToolTip(m_picture.isNull() ? m_text : QString());
    setVisible(text.has_value());
    if (m_preview)
        m_preview->close();
    update();
}

QRect ScreenChip::pictureRect() const
{
    if (m_picture.isNull())
        return {};
    return {QPoint(padding, (height() - pictureSize.height()) / 2), pictureSize};
}

void ScreenChip::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Palette::control);
    painter.drawRoundedRect(rect(), radius, radius);
    if (m_picture.isNull()) {
        const QRectF symbol(padding + 4, (height() - 15) / 2.0, 15, 15);
        Symbols::draw(painter, u"camera.viewfinder"_s, symbol, Palette::textSecondary);
    } else {
        drawRounded(painter, QRectF(pictureRect()).adjusted(0.5, 0.5, -0.5, -0.5), 3, m_picture);
    }
    painter.setFont(Typography::cardBody());
    painter.setPen(Palette::textSecondary);
    const int left = padding + pictureSize.width() + 8;
    const int right = m_remove->isVisible() ? m_remove->x() - 6 : width() - 10;
    Typography::drawElided(painter, QRectF(left, 0, right - left, height()), m_text);
}

void ScreenChip::enterEvent(QEnterEvent *)
{
    if (m_picture.isNull() || m_preview)
        return;
    m_preview = new PicturePreview(QImage::fromData(m_jpeg), this);
    constexpr int gap = 8;
    const QRect chip(mapToGlobal(QPoint()), size());
    m_preview->setGeometry(placeToolTip(
        chip.adjusted(0, -gap, 0, gap), m_preview->size(), screen()->availableGeometry(), Qt::BottomEdge));
    m_preview->show();
}

void ScreenChip::leaveEvent(QEvent *)
{
    if (m_preview)
        m_preview->close();
}

void ScreenChip::hideEvent(QHideEvent *)
{
    if (m_preview)
        m_preview->close();
}

} // namespace nubble
