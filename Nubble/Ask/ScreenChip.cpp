#include "Ask/ScreenChip.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include "Ask/AskTexts.h"
#include "Placement/WindowPlacement.h"
#include "Widgets/CardFrame.h"
#include "Widgets/FloatingFrame.h"
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
constexpr QMargins previewShadow{12, 12, 12, 12}; // the room for it, which ends where the chip begins
constexpr QMargins previewMargins{6, 6, 6, 6};    // between the picture and its card's rim
constexpr double previewRadius = 12;

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

// The picture alone on a card, above the chip and never in the pointer's way. Its shadow is around it.
class PicturePreview : public QWidget {
public:
    PicturePreview(const QImage &picture, QWidget *chip)
        : QWidget(chip, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput),
          m_translucent(FloatingFrame::isTranslucentOver(*chip))
    {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_DeleteOnClose);
        setAttribute(Qt::WA_TranslucentBackground);
        setContentsMargins(previewShadow);
        const QSize size = picture.size().scaled(previewSize, Qt::KeepAspectRatio).expandedTo({1, 1});
        m_picture =
            picture.scaled(size * devicePixelRatioF(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        resize(size.grownBy(previewMargins).grownBy(previewShadow));
        if (!m_translucent)
            setMask(frame().region(this->size()));
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.drawPixmap(0, 0, frame().drawn(size(), devicePixelRatioF(), m_translucent));
        drawRounded(painter, contentsRect().marginsRemoved(previewMargins), previewRadius, m_picture);
    }

private:
    [[nodiscard]] CardFrame frame() const
    {
        CardFrame frame = CardFrame::rounded(contentsRect());
        frame.shadow = toolTipShadow;
        frame.isOpaque = true;
        return frame;
    }

    const bool m_translucent;
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
    const QRect chip(mapToGlobal(QPoint()), size());
    const QRect card = placeToolTip(
        chip.marginsAdded(previewShadow), m_preview->contentsRect().size(), screen()->availableGeometry(),
        Qt::BottomEdge);
    m_preview->setGeometry(card.marginsAdded(previewShadow));
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
