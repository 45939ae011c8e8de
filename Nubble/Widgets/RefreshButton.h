#pragma once

#include <QVariantAnimation>

#include "Widgets/NotchButton.h"

namespace nubble {

// Asks for fresh numbers. Its arrow turns while they are being read, whole turns only; where motion is
// unwelcome it is dimmed instead.
class RefreshButton : public NotchButton {
    Q_OBJECT

public:
    explicit RefreshButton(QWidget *parent = nullptr);

    void setRefreshing(bool refreshing, bool motionReduced);

private:
    bool m_refreshing = false;
    QVariantAnimation m_turn;
};

} // namespace nubble
