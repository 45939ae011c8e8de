#include "Preview/PreviewPanel.h"

#include <QCoreApplication>
#include <QPainter>

#include "Meeting/MeetingCard.h"
#include "Meeting/MeetingNotes.h"
#include "Notch/NotchAction.h"
#include "Notch/NotchView.h"
#include "NotchWiring.h"
#include "Placement/Layout.h"
#include "Placement/MainScreen.h"
#include "Placement/NotchPlacement.h"
#include "Placement/PanelShapes.h"
#include "Platform/DesktopPreferences.h"
#include "Platform/ProcessTable.h"
#include "Platform/System.h"
#include "Platform/Workspace.h"
#include "Review/QuenwickCard.h"
#include "Review/QuenwickMonitor.h"
#include "Sessions/ProcessActivator.h"
#include "Sessions/SessionsCard.h"
#include "Shell/Addon.h"
#include "Shell/Defaults.h"
#include "Shell/NotificationCenter.h"
#include "Usage/PlanUsageMonitor.h"
#include "Usage/UsageCard.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr QRectF screen(0, 0, 1280, 800);
constexpr QColor desktop(94, 111, 128);

class StillClock : public Clock {
public:
    [[nodiscard]] TimePoint now() const override { return previewTime(); }
};

class StillPreferences : public DesktopPreferences {
public:
    [[nodiscard]] bool reducedMotion() const override { return true; }
};

// One that would bring applications forward, if there were any.
class EmptyWorkspace : public Workspace {
public:
    [[nodiscard]] bool canActivate() const override { return true; }
    [[nodiscard]] QList<RunningApplication> runningApplications() const override { return {}; }
    [[nodiscard]] Activation activate(const RunningApplication &) override { return Activation::NotFound; }
    [[nodiscard]] Activation activateNearest(const WantedWindow &) override { return Activation::NotFound; }
    [[nodiscard]] bool isInFront(const WantedWindow &) const override { return false; }
    [[nodiscard]] std::optional<RunningApplication> frontApplication() const override { return {}; }
    [[nodiscard]] std::optional<QString> windowTitle(pid_t) const override { return {}; }
};

// Preferences in which every add-on is switched on.
class EverythingOn : public Defaults {
public:
    explicit EverythingOn(const QString &folder) : Defaults(fileOf(u"preview"_s, folder))
    {
        for (const Addon addon : allAddons)
            set(defaultsKey(addon), true);
    }
};

// The panel and all that it stands on, in the order in which the program builds them.
class PreviewPanel {
public:
    PreviewPanel(const PreviewSample &sample, const QString &folder)
        : m_defaults(folder), m_addons(m_defaults), m_sessions(sample.sessions),
          m_usage(sample.usage, sample.usageProblem, sample.isUsageOld),
          m_meeting(sample.meeting, sample.level), m_quenwick(sample.review),
          m_activator(m_workspace, {*m_processes, {}, {}}),
          m_actions(notchActions(m_addons, m_state, m_notifications, &m_meeting, {})),
          m_companion(companionAction(m_quenwick, m_clock, {})),
          m_layout(Typography::percentLineHeight(), true, static_cast<int>(m_actions.size())),
          m_placement(m_defaults, m_layout),
          m_geometry(panelGeometry(m_layout, sample.edge, 0, screen, sample.panelScale)),
          m_view({m_state, m_placement, m_layout, m_mainScreen, m_preferences}, contents())
    {
        showOnRing(m_view.ring(), m_sessions, m_usage);
        m_view.setAttribute(Qt::WA_TranslucentBackground);
        m_view.setAttribute(Qt::WA_DontShowOnScreen, !sample.isFocused); // nor is it activated
        m_view.resize(m_geometry.frame.size());
        m_view.setGeometryOnScreen(m_geometry);
        m_view.show();
        m_view.open({sample.card});
        if (sample.isFocused)
            focusCard();
        QCoreApplication::sendPostedEvents(); // cards lay themselves out once more when they are shown
        QCoreApplication::processEvents();
    }

    [[nodiscard]] QImage drawn()
    {
        const QRect seen = m_view.outline()
                               .boundingRect()
                               .marginsAdded(cardShadowRoom)
                               .toAlignedRect()
                               .intersected(m_geometry.screen.toRect());
        const qreal scale = m_view.devicePixelRatioF();
        QImage panel((QSizeF(seen.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
        panel.setDevicePixelRatio(scale);
        panel.fill(Qt::transparent);
        m_view.render(&panel, {}, seen, QWidget::DrawChildren);
        QImage image(panel.size(), QImage::Format_RGB32);
        image.setDevicePixelRatio(scale);
        image.fill(desktop);
        QPainter(&image).drawImage(0, 0, panel);
        return image;
    }

private:
    NotchContents contents()
    {
        NotchContents contents{
            .cards =
                {sessionsCard(m_sessions, m_activator, m_clock), usageCard(m_usage, m_clock, m_preferences),
                 meetingCard(m_meeting, m_clock), quenwickCard(m_quenwick, m_clock, m_preferences)},
            .actions = {},
            .companion = m_companion.get()};
        for (const auto &action : m_actions)
            contents.actions.append(action.get());
        return contents;
    }

    void focusCard()
    {
        m_view.activateWindow();
        m_view.focusCard();
    }

    StillClock m_clock;
    StillPreferences m_preferences;
    EmptyWorkspace m_workspace;
    std::unique_ptr<ProcessTable> m_processes = System::processTable();
    EverythingOn m_defaults;
    ActiveAddons m_addons;
    SessionMonitor m_sessions;
    PlanUsageMonitor m_usage;
    MeetingNotes m_meeting;
    QuenwickMonitor m_quenwick;
    ProcessActivator m_activator;
    PanelState m_state;
    NotificationCenter m_notifications;
    std::vector<std::unique_ptr<NotchAction>> m_actions;
    std::unique_ptr<NotchAction> m_companion;
    Layout m_layout;
    MainScreen m_mainScreen;
    NotchPlacement m_placement;
    PanelGeometry m_geometry;
    NotchView m_view;
};

} // namespace

QImage drawPreview(const PreviewSample &sample, const QString &folder)
{
    return PreviewPanel(sample, folder).drawn();
}

} // namespace nubble
