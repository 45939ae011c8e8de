#include <QSignalSpy>
#include <QTest>

#include "Panel/HoverPreview.h"
#include "Panel/PanelState.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestHoverPreview : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void modesAreComparedWithTheirPayloadAndOnlyChangesArePublished()
    {
        PanelState state;
        const QSignalSpy changed(&state, &PanelState::modeChanged);
        QStringList names;
        connect(&state, &PanelState::modeChanged, this, [&](PanelMode mode) { names.append(name(mode)); });
        state.collapse();
        for (const PanelMode mode :
             {PanelMode::inbox(true), PanelMode::inbox(true), PanelMode::inbox(false), PanelMode::usage(),
              PanelMode::sessions(), PanelMode::sessions(), PanelMode::notes()})
            state.setMode(mode);
        state.collapse();
        state.collapse();
        QCOMPARE(names.join(u' '), u"inbox inbox usage sessions notes collapsed"_s);
    }

    void thePreviewComesWithThePointerAndGoesSoonAfterIt()
    {
        PanelState state;
        HoverPreview hover(state);
        hover.setRingHovered(true);
        QCOMPARE(state.mode(), PanelMode::usage());
        hover.setRingHovered(false);
        QCOMPARE(state.mode(), PanelMode::usage());
        QTRY_COMPARE(state.mode(), PanelMode::collapsed());
    }

    void crossingFromTheRingToTheCardKeepsIt()
    {
        PanelState state;
        HoverPreview hover(state);
        hover.setRingHovered(true);
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
            state.setMode(mode);
            hover.setRingHovered(true);
            QCOMPARE(state.mode(), mode);
            hover.setRingHovered(false);
            waitForCollapseChecks();
            QCOMPARE(state.mode(), mode);
        }
    }

    void aClickOnThePreviewsRingOutlivesTheHover()
    {
        PanelState state;
        HoverPreview hover(state);
        hover.setRingHovered(true);
        state.setMode(PanelMode::sessions());
        hover.setRingHovered(false);
        waitForCollapseChecks();
        QCOMPARE(state.mode(), PanelMode::sessions());
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
