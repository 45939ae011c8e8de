#include "Ask/ScreenContext.h"

#include <QBuffer>
#include <QImageReader>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int longestSide = 1568;
constexpr int longestThumbnailSide = 400;
constexpr int quality = 80;

QSize fitted(const QSize &size, int longest)
{
    if (std::max(size.width(), size.height()) <= longest)
        return size;
    return size.scaled(longest, longest, Qt::KeepAspectRatio).expandedTo({1, 1});
}

} // namespace

QString ScreenContext::label() const
{
    QStringList names;
    for (const std::optional<QString> &each : {appName, windowTitle})
        if (each && !each->isEmpty())
            names.append(*each);
    return names.join(u" — "_s);
}

std::optional<QByteArray> encodeScreenshot(const QImage &picture)
{
    if (picture.isNull())
        return std::nullopt;
    const QSize size = fitted(picture.size(), longestSide);
    const QImage scaled = size == picture.size()
        ? picture
        : picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    return scaled.save(&buffer, "JPEG", quality) ? std::optional(jpeg) : std::nullopt;
}

QImage thumbnailOf(const QByteArray &jpeg)
{
    QBuffer buffer;
    buffer.setData(jpeg);
    QImageReader reader(&buffer, "JPEG");
    reader.setScaledSize(fitted(reader.size(), longestThumbnailSide));
    return reader.read();
}

} // namespace nubble
