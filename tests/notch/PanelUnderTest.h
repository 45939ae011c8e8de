#pragma once

#include <QAbstractButton>
#include <QTest>

#include "Meeting/MeetingNotes.h"
#include "Notch/NotchAction.h"
#include "Notch/PanelWindow.h"
#include "NotchWiring.h"
#include "Sessions/ProjectRow.h"
#include "Sessions/SessionsCard.h"
#include "Usage/UsageCard.h"
#include "support/FakeAudioInput.h"
#include "support/FakePanelSurface.h"
#include "support/PanelWorld.h"

namespace nubble {

// What the widget draws, on black.
inline QImage pictureOf(QWidget &widget, int scale)
{
    QImage picture(widget.size() * scale, QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::black);
    widget.render(&picture, {}, {}, QWidget::DrawChildren);
    return picture;
}

// The whole panel on a plain window. Its controls are found by the names that a screen reader says.
class PanelUnderTest {
public:
    explicit PanelUnderTest(PanelWorld &world)
        : monitor(world.monitor),
          notes(
              world.home.home(), world.defaults, world.clock,
              {.processes = world.processes, .microphone = microphone, .clipboardText = {}, .openLink = {}},
              {}),
          actions(notchActions(
              world.addons, world.state, world.notifications, &notes,
              [this](PanelMode mode) { window.view().open(mode); })),
          window(
              {world.state, world.placement, world.layout, world.mainScreen, world.preferences},
              contents(world), [this](QWidget &widget) {
                  auto made = std::make_unique<FakePanelSurface>(widget);
                  surface = made.get();
                  return made;
              })
    {
        showOnRing(window.view().ring(), world.monitor, world.planUsage);
    }

    [[nodiscard]] QWidget &view() { return window.view(); }

    // The visible control whose name begins so.
    [[nodiscard]] QAbstractButton *control(const QString &name)
    {
        for (auto *button : view().findChildren<QAbstractButton *>())
            if (button->isVisible() && button->isEnabled() && button->accessibleName().startsWith(name))
                return button;
        return nullptr;
    }

    [[nodiscard]] QAbstractButton *ring() { return control(QStringLiteral("Claude sessions")); }

    void click(const QString &name) { QTest::mouseClick(control(name), Qt::LeftButton); }
    void clickRing()
    {
        click(QStringLiteral("Claude sessions"));
        monitor.waitForDone(); // what the card asks for
    }

    // The rows of the open card from top to bottom.
    [[nodiscard]] QList<ProjectRow *> rows()
    {
        auto rows = view().findChildren<ProjectRow *>();
        rows.removeIf([](const auto *each) { return !each->isVisible(); });
        std::sort(rows.begin(), rows.end(), [](const auto *a, const auto *b) { return a->y() < b->y(); });
        return rows;
    }

    [[nodiscard]] QStringList rowNames()
    {
        QStringList names;
        for (const auto *row : rows())
            names.append(row->accessibleName());
        return names;
    }

    // Presses at `from` of the widget and drags by that much; the panel may move below the pointer meanwhile.
    static void drag(QWidget *widget, const QPoint &from, const QPoint &by)
    {
        const QPoint end = widget->mapToGlobal(from) + by;
        QTest::mousePress(widget, Qt::LeftButton, {}, from);
        QTest::mouseMove(widget, widget->mapFromGlobal(end));
        QTest::mouseRelease(widget, Qt::LeftButton, {}, widget->mapFromGlobal(end));
    }

private:
    [[nodiscard]] NotchContents contents(PanelWorld &world) const
    {
        NotchContents contents;
        contents.cards = {
            sessionsCard(world.monitor, world.activator, world.clock),
            usageCard(world.planUsage, world.clock, world.preferences)};
        for (const auto &action : actions)
            contents.actions.append(action.get());
        return contents;
    }

public:
    SessionMonitor &monitor;
    FakeAudioInput microphone;
    MeetingNotes notes; // does nothing
    std::vector<std::unique_ptr<NotchAction>> actions;
    FakePanelSurface *surface = nullptr;
    PanelWindow window;
};

} // namespace nubble
