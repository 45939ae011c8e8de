#include "Shell/Addon.h"

#include <QFileInfo>

#include "Platform/Home.h"
#include "Shell/Defaults.h"
#include "Shell/HotKeyTable.h"
#include "Shell/Tools.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

struct Description {
    QStringView rawValue;
    QStringView title;
    QStringView description; // %1 stands for the keys
    HotKey key = HotKey::Ask;
};

const Description &describe(Addon addon)
{
    static constexpr std::array<Description, 4> table{{
        {u"quenwick", u"Quenwick", u"What's waiting for you in Quenwick, approved from the notch."},
        {u"ask", u"Ask Claude About Screen",
         u"%1 screenshots what you're looking at and opens a chat about it.", HotKey::Ask},
        {u"search", u"Search Chats", u"%1 searches every Claude chat and Claude Code session.",
         HotKey::Search},
        {u"notes", u"Meeting Recorder", u"Records the room and writes live notes into a Google Doc tab."},
    }};
    return table.at(static_cast<size_t>(addon));
}

std::optional<QString> missingTool(const QString &tool, const Home &home, const QString &sentence)
{
    return Tools::find(tool, home) ? std::nullopt : std::optional(sentence);
}

} // namespace

QString title(Addon addon)
{
    return describe(addon).title.toString();
}

QString description(Addon addon)
{
    const Description &found = describe(addon);
    return found.description.toString().replace(u"%1"_s, keysText(found.key));
}

QString offText(Addon addon)
{
    return u"The add-on \"%1\" is off. It is switched on in the menu."_s.arg(title(addon));
}

QString defaultsKey(Addon addon)
{
    return u"addon."_s + describe(addon).rawValue;
}

QString quenwickFolder(const Home &home)
{
    return home.applicationSupport(u"Quenwick"_s);
}

QString recorderScript(const Home &home, const Defaults &defaults)
{
    QString script = defaults.string(u"meetingNotes.script"_s).value_or(QString());
    if (script.isEmpty())
        return home.file(u".quib-live/quib-live.mjs"_s);
    if (script == u"~" || script.startsWith(u"~/"))
        return home.path() + script.sliced(1);
    return script;
}

std::optional<QString> missing(Addon addon, const Home &home, const Defaults &defaults)
{
    switch (addon) {
    case Addon::Quenwick:
        return QFileInfo(quenwickFolder(home)).isDir()
            ? std::nullopt
            : std::optional(u"Needs the Quenwick app, opened at least once."_s);
    case Addon::Ask:
        return missingTool(u"claude"_s, home, u"Needs Claude Code (the `claude` command)."_s);
    case Addon::Search:
        return missingTool(u"yarnbin"_s, home, u"Needs yarnbin (the `yarnbin` command)."_s);
    case Addon::Notes:
        if (auto node = missingTool(u"node"_s, home, u"Needs Node.js."_s))
            return node;
        if (const QString script = recorderScript(home, defaults); !QFileInfo::exists(script))
            return u"Needs the recorder script at "_s + script + u'.';
        return std::nullopt;
    }
    return std::nullopt;
}

ActiveAddons::ActiveAddons(const Defaults &defaults)
{
    for (const Addon addon : allAddons)
        if (defaults.boolean(defaultsKey(addon)).value_or(false))
            m_active.insert(addon);
}

QList<Addon> ActiveAddons::actions() const
{
    QList<Addon> actions;
    for (const Addon addon : {Addon::Ask, Addon::Search, Addon::Notes})
        if (contains(addon))
            actions.append(addon);
    return actions;
}

} // namespace nubble
