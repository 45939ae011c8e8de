#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>

#include "Widgets/CappedScroll.h"

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
    void theHeightFollowsTheContentUpToTheLimit()
    {
        auto *content = new Column(40);
        CappedScroll scroll(content, 100);
        scroll.show();
        for (const auto &[asked, height] : {std::pair(100, 100), {0, 1}, {101, 100}, {20, 20}}) {
            content->setBlockHeight(asked);
            QTRY_COMPARE(scroll.height(), height);
            QTRY_COMPARE(scroll.verticalScrollBar()->isVisible(), asked > 100);
        }
    }
};

QTEST_MAIN(TestCardPieces)
#include "tst_card_pieces.moc"
