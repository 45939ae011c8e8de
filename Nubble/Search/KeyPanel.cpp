#include "Search/KeyPanel.h"

#include <QKeyEvent>
#include <QMetaMethod>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace nubble {

namespace {

struct EditingKey {
    QKeyCombination keys;
    const char *action; // a slot of the toolkit's fields
};

constexpr std::array editingKeys{
    EditingKey{Qt::CTRL | Qt::Key_A, "selectAll()"},
    EditingKey{Qt::CTRL | Qt::Key_C, "copy()"},
    EditingKey{Qt::CTRL | Qt::Key_V, "paste()"},
    EditingKey{Qt::CTRL | Qt::Key_X, "cut()"},
    EditingKey{Qt::CTRL | Qt::Key_Z, "undo()"},
    EditingKey{Qt::CTRL | Qt::Key_Y, "redo()"},
    EditingKey{Qt::CTRL | Qt::SHIFT | Qt::Key_Z, "redo()"},
};

} // namespace

KeyPanel::KeyPanel(QWidget *content, QWidget *parent) : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(content);
    setFocusProxy(content);
}

bool KeyPanel::performKeyEquivalent(const QKeyEvent &event)
{
    const auto isMeant = [&event](const EditingKey &each) { return each.keys == event.keyCombination(); };
    const auto *const key = std::find_if(editingKeys.begin(), editingKeys.end(), isMeant);
    if (key == editingKeys.end())
        return false;
    for (QWidget *each = focusWidget(); each && each != this; each = each->parentWidget()) {
        const int slot = each->metaObject()->indexOfSlot(key->action);
        if (slot >= 0)
            return each->metaObject()->method(slot).invoke(each, Qt::DirectConnection);
    }
    return false;
}

void KeyPanel::keyPressEvent(QKeyEvent *event)
{
    if (!performKeyEquivalent(*event))
        QWidget::keyPressEvent(event);
}

} // namespace nubble
