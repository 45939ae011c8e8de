#pragma once

#include <QStringList>

namespace nubble {

// A home folder and the places below it where programs keep their files. A plain value; any thread.
class Home {
public:
    static Home ofUser(); // the password database's, whatever HOME says
    // Another one, for trials and tests: keeps even its configuration to itself.
    explicit Home(const QString &folder);

    [[nodiscard]] const QString &path() const { return m_path; }
    [[nodiscard]] const QString &configFolder() const { return m_configFolder; } // XDG configuration folder
    [[nodiscard]] QString file(const QString &relativePath) const;

    // Where Claude Code keeps its files: in the home folder, and where our environment says it does.
    [[nodiscard]] const QStringList &claudeFolders() const { return m_claudeFolders; }

    // Where application `name` keeps its data: below "Library/Application Support" when that folder is there,
    // else below the configuration folder.
    [[nodiscard]] QString applicationSupport(const QString &name) const;

private:
    Home(QString folder, QString configFolder);

    QString m_path;
    QString m_configFolder;
    QStringList m_claudeFolders;
};

} // namespace nubble
