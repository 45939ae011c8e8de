#pragma once

#include <QFileInfo>
#include <QProcess>
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

    static QByteArray compressed(const QByteArray &plain)
    {
        QProcess zstd;
        zstd.start(QStringLiteral("zstd"), {QStringLiteral("-c")});
        zstd.write(plain);
        zstd.closeWriteChannel();
        if (!zstd.waitForFinished())
            qFatal("zstd does not run");
        return zstd.readAllStandardOutput();
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
        return entry(
            usageKey(),
            compressed("{\"five_hour\":{\"utilization\":" + QByteArray::number(sessionPercent) + "}}"));
    }

    [[nodiscard]] QString folder() const { return path(QStringLiteral(".config/Claude/Cache/Cache_Data")); }
    [[nodiscard]] QByteArray nativePath(const QString &name) const
    {
        return QFile::encodeName(folder() + u'/' + name);
    }

    QByteArray add(const QString &name, const QByteArray &bytes, TimePoint modified) const
    {
        QDir().mkpath(folder());
        QFile file(folder() + u'/' + name);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
            qFatal("cannot write %s", qPrintable(name));
        if (!file.setFileTime(
                QDateTime::fromMSecsSinceEpoch(modified.time_since_epoch().count()),
                QFileDevice::FileModificationTime))
            qFatal("cannot date %s", qPrintable(name));
        return nativePath(name);
    }
};

} // namespace nubble
