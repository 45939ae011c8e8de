#pragma once

#include "Widgets/PillButton.h"

namespace nubble {

// Starts the recording, or stops it; there is nothing to press while it finishes.
class BigButton : public PillButton {
    Q_OBJECT

public:
    explicit BigButton(QWidget *parent = nullptr);

    void show(bool running, bool finishing);
    [[nodiscard]] int widest() const; // of all that it may say, in units
};

// Has the notes written now.
class UpdateNowButton : public PillButton {
    Q_OBJECT

public:
    explicit UpdateNowButton(QWidget *parent = nullptr);

    void show(bool updating, bool enabled);
    [[nodiscard]] int widest() const;
};

// A small one with a title.
class SmallButton : public PillButton {
    Q_OBJECT

public:
    explicit SmallButton(const QString &title, QWidget *parent = nullptr);
};

} // namespace nubble
