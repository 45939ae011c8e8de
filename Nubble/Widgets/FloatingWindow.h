#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class QRect;
class QWidget;

namespace nubble {

class FloatingFrame;
class FloatingSurface;
class ToolTips;

// A window that is called up over one's work: opens with the keyboard in it, is dragged by its background,
// and closes on Escape or when the keyboard goes to another window. Nothing of it exists before it is first
// opened; after that it is kept. Lengths are device-independent pixels. Main thread only.
class FloatingWindow : public QObject {
    Q_OBJECT

public:
    // The content's focus proxy gets the keyboard on each opening.
    using ContentFactory = std::function<QWidget *()>;
    using SurfaceFactory = std::function<std::unique_ptr<FloatingSurface>(QWidget &)>;

    // `title` is its accessible name.
    FloatingWindow(
        QString title, ContentFactory makeContent, SurfaceFactory makeSurface, QObject *parent = nullptr);
    ~FloatingWindow() override;

    // With the content there, in screen coordinates, without the shadow around it. An open one is moved.
    void openAt(const QRect &content);
    void open(); // brings an open one forward; otherwise where it was
    void close();

    [[nodiscard]] bool isOpen() const { return m_open; }

    // While somebody holds this, losing the keyboard does not close the window. A loss that has not been made
    // good by then closes it afterwards.
    using Hold = std::shared_ptr<void>;
    [[nodiscard]] Hold holdOpen();

    // Takes an open window out of every picture of the screen, and back. It keeps the keyboard meanwhile.
    void setUnseen(bool unseen);

    // The window's place in screen coordinates, its shadow included; empty before it is first opened.
    [[nodiscard]] QRect frame() const;

Q_SIGNALS:
    void closed();

private:
    void make();
    void followTranslucency();
    void keyboardTaken();
    void keyboardLost();
    void holdReleased();

    const QString m_title;
    ContentFactory m_makeContent;
    SurfaceFactory m_makeSurface;
    std::unique_ptr<FloatingFrame> m_frame; // outlives the surface
    std::unique_ptr<FloatingSurface> m_surface;
    ToolTips *m_toolTips = nullptr; // the frame's
    QWidget *m_content = nullptr;
    std::weak_ptr<void> m_hold;
    bool m_open = false;
    bool m_keyboardAskedFor = false; // and not come yet
    bool m_lostWhileHeld = false;
};

} // namespace nubble
