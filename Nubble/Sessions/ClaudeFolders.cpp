#include "Sessions/ClaudeFolders.h"

#include <QDir>

#include "Platform/Home.h"
#include "Shell/Defaults.h"

using namespace Qt::StringLiterals;

namespace nubble {

QStringList claudeFolders(const Home &home, const Defaults &defaults)
{
    constexpr qsizetype most = 16;
    QStringList folders = home.claudeFolders();
    for (QString folder : defaults.string(u"sessions.folders"_s).value_or(QString()).split(u':')) {
        folder = folder.trimmed();
        if (folder.startsWith("~/"_L1))
            folder = home.file(folder.sliced(2));
        if (QDir::isAbsolutePath(folder))
            folders.append(QDir::cleanPath(folder));
    }
    folders.removeDuplicates();
    return folders.first(std::min(folders.size(), most));
}

} // namespace nubble
