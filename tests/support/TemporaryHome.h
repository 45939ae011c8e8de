#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "Platform/Home.h"

namespace nubble {

// An empty home folder that goes away with the test.
class TemporaryHome {
public:
    [[nodiscard]] Home home() const { return Home(m_folder.path()); }
    [[nodiscard]] QString path(const QString &relative) const { return m_folder.filePath(relative); }

    // Creates or replaces a file, and the folders on the way to it.
    QString write(const QString &relative, const QByteArray &bytes) const
    {
        QString absolute = path(relative);
        QDir().mkpath(QFileInfo(absolute).path());
        QFile file(absolute);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(absolute));
        return absolute;
    }

    // The same, with leave to be run.
    QString writeScript(const QString &relative, const QByteArray &bytes) const
    {
        QString absolute = write(relative, bytes);
        QFile::setPermissions(absolute, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return absolute;
    }

private:
    QTemporaryDir m_folder;
};

} // namespace nubble
