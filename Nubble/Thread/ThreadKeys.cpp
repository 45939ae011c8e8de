#include "Thread/ThreadKeys.h"

#include <QKeyEvent>

#include <algorithm>
#include <optional>

#include "Thread/ThreadScene.h"

namespace nubble {

namespace {

constexpr int lineStep = 40;

std::optional<QTextCursor::MoveOperation> operation(int key, bool byWord)
{
    switch (key) {
    case Qt::Key_Left:
        return byWord ? QTextCursor::PreviousWord : QTextCursor::PreviousCharacter;
    case Qt::Key_Right:
        return byWord ? QTextCursor::NextWord : QTextCursor::NextCharacter;
    case Qt::Key_Up:
        return QTextCursor::Up;
    case Qt::Key_Down:
        return QTextCursor::Down;
    case Qt::Key_Home:
        return QTextCursor::StartOfLine;
    case Qt::Key_End:
        return QTextCursor::EndOfLine;
    default:
        return std::nullopt;
    }
}

void extendTo(ThreadScene &scene, const ThreadPosition &position)
{
    scene.select({scene.selection().anchor, position});
    scene.reveal(position.row, ThreadPositions::caret(scene.layout(), position));
    scene.copySelection(QClipboard::Selection);
}

bool mark(ThreadScene &scene, const QKeyEvent &event)
{
    const bool isControl = event.modifiers() & Qt::ControlModifier;
    const auto move = operation(event.key(), isControl);
    if (!move || scene.layout().shown().empty())
        return false;
    if (scene.selection().isEmpty() && scene.selection().cursor == ThreadPosition{}) {
        const ThreadPosition top{scene.layout().shown().front().row, 0};
        scene.select({top, top});
    }
    const ThreadPosition from = scene.selection().cursor;
    if (isControl && event.key() == Qt::Key_Home)
        extendTo(scene, {});
    else if (isControl && event.key() == Qt::Key_End)
        extendTo(scene, ThreadPositions::end(scene.rows(), scene.layout()));
    else
        extendTo(scene, ThreadPositions::moved(scene.rows(), scene.layout(), from, *move));
    return true;
}

bool scroll(ThreadScene &scene, int key)
{
    switch (key) {
    case Qt::Key_Up:
        return scene.scrollBy(-lineStep), true;
    case Qt::Key_Down:
        return scene.scrollBy(lineStep), true;
    case Qt::Key_PageUp:
        return scene.scrollPages(-1), true;
    case Qt::Key_PageDown:
        return scene.scrollPages(1), true;
    case Qt::Key_Home:
        return scene.scrollTo(0), true;
    case Qt::Key_End:
        return scene.scrollToEnd(), true;
    default:
        return false;
    }
}

} // namespace

bool handleThreadKey(ThreadScene &scene, const QKeyEvent &event)
{
    if (event.matches(QKeySequence::SelectAll))
        return scene.selectAll(), true;
    if (event.matches(QKeySequence::Copy))
        return scene.copy();
    const bool isActivation =
        event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter || event.key() == Qt::Key_Space;
    if (isActivation)
        return scene.focused() && (scene.activate(*scene.focused()), true);
    if (event.modifiers() & Qt::ShiftModifier)
        return mark(scene, event);
    if (event.modifiers() & (Qt::AltModifier | Qt::MetaModifier))
        return false;
    return scroll(scene, event.key());
}

} // namespace nubble
