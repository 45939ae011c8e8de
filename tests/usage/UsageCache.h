#pragma once

#include <QtEndian>

#include "Platform/Clock.h"
#include "support/TemporaryHome.h"

namespace nubble {

// Entries as a browser's cache leaves them, in a home folder that goes away with the test.
class UsageCache : public TemporaryHome {
public:
    static QByteArray keyFor(const QByteArray &path)
    {
        return "1/0/_dk_https://claude.ai https://claude.ai https://claude.ai" + path;
    }
    static QByteArray usageKey() { return keyFor("/api/organizations/abc/usage"); }

    // By zstd's format, though nothing is made shorter: one frame of one block that is stored as it is.
    static QByteArray compressed(const QByteArray &plain)
    {
        QByteArray block(4, '\0');
        qToLittleEndian(static_cast<quint32>(plain.size()) * 8 + 1, block.data());
        return QByteArray("\x28\xb5\x2f\xfd\0\x58", 6) + block.first(3) + plain;
    }

    // Header, key, body, then an end record, the response headers and another end record.
    static QByteArray entry(const QByteArray &key, const QByteArray &body)
    {
        QByteArray header(24, '\0');
        qToLittleEndian<quint64>(0xfcfb6d1ba7725c30, header.data());
        qToLittleEndian<quint32>(5, header.data() + 8);
        qToLittleEndian<quint32>(static_cast<quint32>(key.size()), header.data() + 12);
        const QByteArray endRecord = QByteArray::fromHex("d8410d97456ffaf4") + QByteArray(16, '\1');
        return header + key + body + endRecord + QByteArrayLiteral("HTTP/1.1 200\0content-encoding: zstd\0")
            + endRecord;
    }
    static QByteArray usageEntry(int sessionPercent)
    {
        const QByteArray percent = QByteArray::number(sessionPercent);
        return entry(usageKey(), compressed("{\"five_hour\":{\"utilization\":" + percent + "}}"));
    }

    [[nodiscard]] QString folder() const { return path(QStringLiteral(".config/Claude/Cache/Cache_Data")); }
    [[nodiscard]] QByteArray nativePath(const QString &name) const
    {
        return QFile::encodeName(folder() + u'/' + name);
    }

    QByteArray add(const QString &name, const QByteArray &bytes, TimePoint modified) const
    {
        QFile file(write(QStringLiteral(".config/Claude/Cache/Cache_Data/") + name, bytes));
        const auto date = QDateTime::fromMSecsSinceEpoch(modified.time_since_epoch().count());
        if (!file.open(QIODevice::ReadWrite) || !file.setFileTime(date, QFileDevice::FileModificationTime))
            qFatal("cannot date %s", qPrintable(name));
        return nativePath(name);
    }
};

} // namespace nubble
