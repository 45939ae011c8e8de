#include "Ask/ScreenContext.h"

#include <QBuffer>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr int longestSide = 1568;
constexpr int longestThumbnailSide = 400;
constexpr int quality = 80;

QImage fitted(const QImage &picture, int longest)
{
    if (std::max(picture.width(), picture.height()) <= longest)
        return picture;
    const QSize size = picture.size().scaled(longest, longest, Qt::KeepAspectRatio).expandedTo({1, 1});
    return picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
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

// Scaling once more is several times quicker than reading the JPEG.
std::optional<Screenshot> encodeScreenshot(const QImage &picture)
{
    if (picture.isNull())
        return std::nullopt;
    const QImage sent = fitted(picture, longestSide);
    QBuffer jpeg;
    jpeg.open(QIODevice::WriteOnly);
    if (!sent.save(&jpeg, "JPEG", quality))
        return std::nullopt;
    return Screenshot{jpeg.data(), fitted(sent, longestThumbnailSide)};
}

} // namespace nubble
