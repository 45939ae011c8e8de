#include "Usage/CacheEntry.h"

#include <QList>
#include <QtEndian>

#include <algorithm>

namespace nubble::CacheEntry {

namespace {

constexpr qsizetype keyLengthOffset = 12;
constexpr QByteArrayView zstdMagic("\x28\xb5\x2f\xfd", 4);
constexpr QByteArrayView organizationsPath("/api/organizations/");

QList<QByteArrayView> piecesOf(QByteArrayView path)
{
    QList<QByteArrayView> pieces;
    while (!path.isEmpty()) {
        const qsizetype slash = path.indexOf('/');
        const QByteArrayView piece = slash < 0 ? path : path.first(slash);
        if (!piece.isEmpty())
            pieces.append(piece);
        path = slash < 0 ? QByteArrayView() : path.sliced(slash + 1);
    }
    return pieces;
}

} // namespace

std::optional<QByteArrayView> keyOf(QByteArrayView bytes)
{
    if (bytes.size() <= headerSize)
        return std::nullopt;
    const qint64 length = qFromLittleEndian<quint32>(bytes.data() + keyLengthOffset);
    if (length == 0 || length > bytes.size() - headerSize)
        return std::nullopt;
    const QByteArrayView key = bytes.sliced(headerSize, length);
    return key.isValidUtf8() ? std::optional(key) : std::nullopt;
}

bool isUsageKey(QByteArrayView key, QByteArrayView domain)
{
    const qsizetype organizations = key.indexOf(organizationsPath);
    if (organizations < 0 || !key.contains(domain))
        return false;
    QByteArrayView path = key.sliced(organizations + organizationsPath.size());
    path = path.first(
        std::find_if(path.begin(), path.end(), [](char c) { return c == '?' || c == '#'; }) - path.begin());
    const QList<QByteArrayView> pieces = piecesOf(path);
    return pieces.size() == 2 && pieces.last() == "usage";
}

std::optional<QByteArrayView> compressedBodyOf(QByteArrayView bytes)
{
    const auto key = keyOf(bytes);
    if (!key)
        return std::nullopt;
    const QByteArrayView body = bytes.sliced(headerSize + key->size());
    return body.startsWith(zstdMagic) ? std::optional(body) : std::nullopt;
}

} // namespace nubble::CacheEntry
