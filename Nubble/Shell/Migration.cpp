#include "Shell/Migration.h"

#include <QFileInfo>

#include "Platform/Home.h"
#include "Platform/MainThread.h"
#include "Shell/Addon.h"
#include "Shell/Defaults.h"

using namespace Qt::StringLiterals;

namespace nubble::Migration {

void fromBrindleCove(Defaults &defaults, const Home &home)
{
    assertMainThread("Nubble/Shell/Migration");
    const QString done = u"migrated.brindleCove"_s;
    if (defaults.boolean(done).value_or(false))
        return;
    const QString oldFile = Defaults::fileOf(u"com.brindlecove.app"_s, home.configFolder());
    if (!QFileInfo(oldFile).isFile())
        return;
    const Defaults old(oldFile);
    if (!old.contains(u"placement.edge"_s))
        return;

    defaults.set(done, true);
    for (const QString &key :
         {u"placement.edge"_s, u"placement.offset"_s, u"placement.locked"_s, u"placement.visible"_s,
          u"meetingNotes.link"_s})
        if (old.contains(key) && !defaults.contains(key))
            defaults.copy(key, old);
    for (const Addon addon : allAddons)
        if (!missing(addon, home, defaults))
            defaults.set(defaultsKey(addon), true);
}

} // namespace nubble::Migration
