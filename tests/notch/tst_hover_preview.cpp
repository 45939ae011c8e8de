#include <QTest>

#include "Notch/HoverPreview.h"
#include "Notch/PanelState.h"

using namespace nubble;

class TestHoverPreview : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thePreviewOutlivesACrossingFromTheRingToTheCardAndBack()
    {
        PanelState state;
        HoverPreview hover(state);
        hover.setRingHovered(true);
        QCOMPARE(state.mode(), PanelMode::usage());
        hover.setRingHovered(false);
        hover.setCardHovered(true);
        waitForCollapseChecks();
        QCOMPARE(state.mode(), PanelMode::usage());
        hover.setCardHovered(false);
        hover.setRingHovered(true); // and back
        waitForCollapseChecks();
        QCOMPARE(state.mode(), PanelMode::usage());
        hover.setRingHovered(false);
        QTRY_COMPARE(state.mode(), PanelMode::collapsed());
    }

    void cardsOpenedByAClickAreLeftAlone()
    {
        for (const PanelMode mode : {PanelMode::sessions(), PanelMode::inbox(true), PanelMode::notes()}) {
            PanelState state;
            HoverPreview hover(state);
            hover.setRingHovered(true);
            state.setMode(mode); // instead of the preview
            hover.setRingHovered(false);
            hover.setRingHovered(true);
            QCOMPARE(state.mode(), mode);
            hover.setRingHovered(false);
            waitForCollapseChecks();
            QCOMPARE(state.mode(), mode);
        }
    }

    void everyCardClosesSoonAfterThePointerHasLeftWherePressesElsewhereGoUnseen()
    {
        PanelState state;
        HoverPreview hover(state);
        hover.closeEveryCardWhenLeft();
        hover.setRingHovered(true);
        state.setMode(PanelMode::sessions());
        hover.setRingHovered(false);
        hover.setCardHovered(true);
        waitForCollapseChecks();
        QCOMPARE(state.mode(), PanelMode::sessions());
        hover.setCardHovered(false);
        QTRY_COMPARE(state.mode(), PanelMode::collapsed());
    }

private:
    // Until every check scheduled so far has been made: checks of a later hover are made after them.
    static void waitForCollapseChecks()
    {
        PanelState witness;
        HoverPreview later(witness);
        later.setRingHovered(true);
        later.setRingHovered(false);
        QTRY_COMPARE(witness.mode(), PanelMode::collapsed());
    }
};

QTEST_GUILESS_MAIN(TestHoverPreview)
#include "tst_hover_preview.moc"
