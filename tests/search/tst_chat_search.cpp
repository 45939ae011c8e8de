#include <QSignalSpy>
#include <QTest>

#include <csignal>

#include "Search/ChatDecoding.h"
#include "Search/ChatSearch.h"
#include "search/YarnbinStandIn.h"

using namespace nubble;
using namespace Qt::StringLiterals;

class ChatSearchTest : public QObject {
    Q_OBJECT

private:
    [[nodiscard]] QStringList titles() const
    {
        QStringList all;
        for (const ChatHit &hit : m_search->results())
            all.append(hit.title);
        return all;
    }
    void untilAnswered()
    {
        QSignalSpy answered(&*m_search, &ChatSearch::answered);
        QVERIFY(answered.wait(20000));
    }
    void untilLoaded(int count) // categories, after what was asked for before
    {
        m_home->write(u"categories"_s, QString(uR"([{"category":"c","count":%1}])"_s.arg(count)).toUtf8());
        m_search->loadCategories();
        QTRY_VERIFY(!m_search->categories().isEmpty() && m_search->categories().first().count == count);
    }
    void search(const QString &query)
    {
        m_search->setQuery(query);
        untilAnswered();
    }

    std::optional<TemporaryHome> m_home;
    std::optional<YarnbinStandIn> m_tool;
    std::optional<ChatSearch> m_search;

private Q_SLOTS:
    void initTestCase() { qputenv("PATH", "/usr/bin:/bin"); }
    void init()
    {
        m_search.reset();
        m_home.emplace();
        m_tool.emplace(*m_home);
        m_search.emplace(m_home->home(), [](const QUrl &) {});
    }

    void decodesAllOrNothing()
    {
        const auto decoded = [](const QJsonObject &change) {
            return decodeSearch(searchJson({hitJson(u"a"_s), hitJson(u"b"_s, change)}));
        };
        for (const QJsonObject &sound :
             {QJsonObject(),
              {{u"url"_s, u"u"_s}, {u"app_url"_s, QJsonValue::Null}},
              {{u"deep"_s, QJsonArray{QJsonArray{1}}}}})
            QCOMPARE(decoded(sound).value().results.first().tags, QStringList{u"t"_s});
        for (const auto &[key, wrong] : std::initializer_list<std::pair<QString, QJsonValue>>{
                 {u"resume"_s, 1},
                 {u"title"_s, QJsonValue::Null},
                 {u"id"_s, 5},
                 {u"starred"_s, u"true"_s},
                 {u"starred"_s, 1},
                 {u"tags"_s, u"t"_s},
                 {u"tags"_s, QJsonArray{u"t"_s, 1}}})
            QVERIFY2(!decoded({{key, wrong}}), qPrintable(key));
        for (const auto &key : hitJson({}).keys())
            QVERIFY2(!decoded({{u"remove"_s, key}}), qPrintable(key));
    }
    void decodesThreadsAndCategories()
    {
        const QByteArray head = R"({"id":"1","source":"code","title":"t","updated":"u","resume":"r",)";
        const QByteArray messages = R"("messages":[{"me":true,"text":"a"},{"me":false,"text":"b"}])";
        const auto thread = decodeThread(head + messages + R"(,"hits":[1,0,7,-1]})");
        QVERIFY(thread && thread->resume == u"r" && !thread->url);
        QCOMPARE(thread->hits, (QList<qsizetype>{1, 0}));
        QCOMPARE(thread->messages.last(), (ChatThread::Message{false, u"b"_s}));
        for (const QByteArray wrong : {R"(,"hits":[0.5]})", R"(,"hits":["1"]})", R"(,"hits":[1e30]})", "}"})
            QVERIFY2(!decodeThread(head + messages + wrong), wrong);
        QVERIFY(!decodeThread(head + R"("messages":[{"text":"a"}],"hits":[]})"));
        QCOMPARE(
            decodeCategories(R"([{"category":"c","count":3}])"),
            (QList<ChatCategory>{ChatCategory{u"c"_s, 3}}));
        for (const QByteArray wrong : {"{}", R"([{"category":"c","count":3.5}])", "[1]", "", "[]x"})
            QVERIFY2(!decodeCategories(wrong), wrong);
    }

    void askingAndShowing()
    {
        m_tool->answers(searchJson(
            {hitJson(u"one"_s), hitJson(u"two"_s)},
            {{u"teh"_s, QJsonArray{u"the"_s, u"tea"_s}}, {u"x"_s, QJsonArray{u"y"_s}}}));
        m_search->setQuery(u"first"_s);
        QElapsedTimer typed;
        typed.start();
        search(u" \tteh x\n "_s);
        QCOMPARE(
            m_tool->calls(), QList<QByteArray>({"search|--json|-n|25|teh x", ""})); // and its own line's end
        QVERIFY(typed.elapsed() >= 120);
        QCOMPARE(titles(), QStringList({u"one"_s, u"two"_s}));
        QCOMPARE(m_search->corrected(), u"teh → the / tea, x → y"_s);
        m_search->move(7);
        QCOMPARE(m_search->selection(), 1);
        m_search->move(-7);
        QCOMPARE(m_search->selection(), 0);
        m_search->move(1);
        m_search->setQuery({});
        m_search->setCategory(u"Work"_s);
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
        QVERIFY(m_search->isSearching()); // at once
        untilAnswered();
        QCOMPARE(m_tool->calls().last(), "search|--json|-n|25|cat:\"Work\" ");
        QCOMPARE(m_search->selection(), 0);
    }

    void saysWhatIsWrong_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::newRow("fails") << QByteArray("cat $home/answer; exit 1");
        QTest::newRow("half") << QByteArray("head -c 30 $home/answer");
        QTest::newRow("two") << QByteArray("cat $home/answer $home/answer");
        QTest::newRow("floods") << QByteArray("yes >&2 & cat /dev/zero");
        QTest::newRow("killed") << QByteArray("cat $home/answer; kill -9 $$");
    }
    void saysWhatIsWrong()
    {
        QFETCH(QByteArray, script);
        m_tool->answers(searchJson({hitJson(u"one"_s)}, {{u"a"_s, QJsonArray{u"b"_s}}}));
        search(u"q"_s);
        QCOMPARE(titles().size(), 1);
        m_tool->follow(script);
        search(u"r"_s);
        QCOMPARE(m_search->problem(), u"Search failed — run `yarnbin sync` in a terminal"_s);
        QVERIFY(titles().isEmpty());
        m_tool->remove();
        m_search->setCategory(u"Work"_s);
        QVERIFY(!m_search->problem() && !m_search->hasAnswered()); // that was about another one
        untilAnswered();
        QCOMPARE(m_search->problem(), u"yarnbin isn't installed — the `yarnbin` command wasn't found"_s);
        m_tool->answers(searchJson({}));
        m_search->setQuery(u"t"_s);
        QVERIFY(!m_search->problem());
        untilAnswered();
        QVERIFY(m_search->hasAnswered());
    }

    void onlyTheNewestSearchCountsAndOthersAreEnded()
    {
        m_tool->answers(searchJson({hitJson(u"new"_s)}));
        m_tool->follow("trap '' TERM; [[ $5 = old ]] && sleep 60; cat $home/answer");
        for (int i = 0; i < 3; ++i) {
            m_search->setQuery(u"old"_s);
            QTRY_COMPARE(m_tool->calls().size(), i + 1);
            QVERIFY(m_search->isSearching());
            m_search->setQuery(u"older"_s);
        }
        search(u"new"_s);
        QCOMPARE(titles(), QStringList{u"new"_s});
        QVERIFY(!m_search->isSearching());
        const auto alive = [this] {
            int count = 0;
            for (const QByteArray &pid : m_home->read(u"pids"_s).trimmed().split('\n'))
                count += ::kill(pid.toInt(), 0) == 0;
            return count;
        };
        QTRY_COMPARE(alive(), 0);
    }

    void anAnswerThatIsStillDecodedIsDropped()
    {
        QJsonObject large = hitJson(u"old"_s);
        large[u"snippet"_s] = QString(30'000'000, u'x');
        m_tool->answers(searchJson({large}));
        m_search->setQuery(u"old"_s);
        QTRY_VERIFY(!m_home->read(u"pids"_s).isEmpty());
        QTRY_VERIFY(::kill(m_home->read(u"pids"_s).trimmed().toInt(), 0) != 0);
        QCoreApplication::processEvents(); // in which it is given to the decoder
        m_tool->answers(searchJson({hitJson(u"new"_s)}));
        QSignalSpy answered(&*m_search, &ChatSearch::answered);
        m_search->setCategory(u"c"_s);
        QTRY_COMPARE(titles(), QStringList{u"new"_s});
        QCOMPARE(answered.size(), 1);
    }

    void aThreadIsReadSteppedThroughAndClosed()
    {
        m_tool->answers(searchJson({hitJson(u"one"_s)}));
        m_search->openThread();
        search(u"q"_s);
        m_home->write(u"thread"_s, R"({"id":"1","source":"c","title":"t","updated":"u","messages":[
            {"me":true,"text":"a"},{"me":true,"text":"b"},{"me":true,"text":"c"}],"hits":[0,2]})");
        m_tool->follow("[[ $1 = thread ]] && cat $home/thread || { sleep 0.3; cat $home/categories; }");
        m_search->openThread();
        QTRY_VERIFY(m_search->thread());
        QCOMPARE(m_tool->calls().last(), "thread|id-one|--query|q");
        m_search->stepHit(-1);
        QCOMPARE(m_search->hit(), 1);
        m_search->stepHit(1);
        QCOMPARE(m_search->hit(), 0);
        m_search->stepHit(1);
        QSignalSpy changed(&*m_search, &ChatSearch::threadChanged);
        m_search->openThread();
        QVERIFY(changed.wait());
        QCOMPARE(m_search->hit(), 0);
        m_search->closeThread();
        changed.clear();
        for (const bool closes : {true, false}) {
            m_search->openThread();
            closes ? m_search->closeThread() : m_search->setQuery(u"other"_s);
            untilLoaded(closes ? 1 : 2);
            QCOMPARE(changed.size(), 0);
        }
        m_tool->follow("echo nonsense");
        m_search->loadCategories();
        search(u"last"_s);
        QCOMPARE(m_search->categories().first().count, 2);
    }
};

QTEST_GUILESS_MAIN(ChatSearchTest)
#include "tst_chat_search.moc"
