#include "Shell/HotKeyTable.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

const HotKeyBinding &bindingOf(HotKey key)
{
    return hotKeyBindings.at(static_cast<size_t>(key));
}

// Enough for the keys of the table. The toolkit writes all keys, but in a library that needs a display.
QString nameOf(Qt::Key key)
{
    return key == Qt::Key_Space ? u"Space"_s : QString(QChar(key));
}

} // namespace

QKeyCombination keysOf(HotKey key)
{
    return bindingOf(key).keys;
}

QString keysText(HotKey key)
{
    const QKeyCombination keys = keysOf(key);
    QString text;
    if (keys.keyboardModifiers() & Qt::ControlModifier)
        text += u"Ctrl+"_s;
    if (keys.keyboardModifiers() & Qt::AltModifier)
        text += u"Alt+"_s;
    return text + nameOf(keys.key());
}

QString actionName(HotKey key)
{
    return bindingOf(key).action.toString();
}

} // namespace nubble
