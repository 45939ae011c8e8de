#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include "Panel/CappedScroll.h"
#include "Panel/NotchButton.h"
#include "Panel/TooltipShell.h"
#include "panel/Edges.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

// A content that is as tall as it is told.
class Column : public QWidget {
public:
    explicit Column(int height) : m_block(new QWidget)
    {
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_block);
        setBlockHeight(height);
    }

    void setBlockHeight(int height) { m_block->setFixedSize(200, height); }

private:
    QWidget *m_block;
};

} // namespace

class TestCardPieces : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void contentIsShownWholeUpToTheLimitAndScrollsBeyond_data()
    {
        QTest::addColumn<int>("content");
        QTest::addColumn<int>("height");
        QTest::addColumn<bool>("scrolls");
        QTest::newRow("none") << 0 << 1 << false;
        QTest::newRow("short") << 40 << 40 << false;
        QTest::newRow("just fits") << 100 << 100 << false;
        QTest::newRow("one pixel more") << 101 << 100 << true;
        QTest::newRow("very long") << 100'000 << 100 << true;
    }

    void contentIsShownWholeUpToTheLimitAndScrollsBeyond()
    {
        QFETCH(const int, content);
        QFETCH(const int, height);
        QFETCH(const bool, scrolls);
        CappedScroll scroll(new Column(content), 100);
        scroll.show();
        QCOMPARE(scroll.height(), height);
        QCOMPARE(scroll.sizeHint().height(), height);
        QTRY_COMPARE(scroll.verticalScrollBar()->isVisible(), scrolls);
        QCOMPARE(scroll.verticalScrollBar()->maximum() > 0, scrolls);
    }

    void theHeightFollowsTheContent()
    {
        auto *content = new Column(40);
        CappedScroll scroll(content, 100);
        scroll.show();
        const QSignalSpy changed(&scroll, &CappedScroll::heightChanged);
        for (const auto &[asked, height] : {std::pair(70, 70), {300, 100}, {20, 20}}) {
            content->setBlockHeight(asked);
            QTRY_COMPARE(scroll.height(), height);
        }
        QCOMPARE(changed.count(), 3);
        content->setBlockHeight(20);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(changed.count(), 3);
    }

    void theFrameHoldsTheCardAndItsTail_data() { addEdgeRows(); }
    void theFrameHoldsTheCardAndItsTail()
    {
        QFETCH(const NotchEdge, edge);
        QWidget parent;
        auto *content = new Column(120);
        TooltipShell shell(content, edge, true, &parent);
        shell.move(30, 40);
        shell.setTailAlong(60);
        parent.show();

        QCOMPARE(shell.cardRect().size(), content->sizeHint());
        QCOMPARE(content->geometry(), shell.cardRect());
        const QRectF outline = shell.outline().boundingRect();
        const QRectF card = shell.cardRect().translated(shell.pos());
        QVERIFY(QRectF(shell.geometry()).contains(outline));
        QVERIFY(outline.contains(card));
        const double tails[]{
            outline.right() - card.right(), card.left() - outline.left(), card.top() - outline.top(),
            outline.bottom() - card.bottom()};
        for (const NotchEdge side : allEdges)
            QCOMPARE(tails[static_cast<int>(side)], side == edge ? 14.0 : 0.0);

        // A content that grows asks for a larger frame.
        const QSignalSpy resized(&shell, &TooltipShell::contentResized);
        content->setBlockHeight(180);
        QTRY_VERIFY(!resized.isEmpty());
        shell.resize(shell.sizeHint());
        QCOMPARE(shell.cardRect().height(), 180);
    }

    void aButtonSaysWhatItDoesAndCanBePressedByTheKeyboard()
    {
        NotchButton button(u"xmark"_s, u"Close"_s);
        QCOMPARE(button.accessibleName(), u"Close"_s);
        QCOMPARE(button.toolTip(), u"Close"_s);
        QVERIFY(button.focusPolicy() & Qt::TabFocus);
        const QSignalSpy clicked(&button, &NotchButton::clicked);
        QTest::keyClick(&button, Qt::Key_Space);
        QCOMPARE(clicked.count(), 1);
    }
};

QTEST_MAIN(TestCardPieces)
#include "tst_card_pieces.moc"
