#include <QTest>

#include <algorithm>
#include <memory>
#include <sys/resource.h>
#include <unistd.h>

#include "Shell/Command.h"
#include "Shell/SerialWorker.h"

using namespace nubble;
using namespace Qt::StringLiterals;

class SerialWorkerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void worksInOrderAndTheLatestTakesThePlaceOfTheOneBefore()
    {
        SerialWorker worker(u"test"_s);
        QSemaphore begun;
        QSemaphore gate;
        QByteArray published;
        const auto publish = [&](char what) {
            QCOMPARE(QThread::currentThread(), thread());
            published += what;
        };
        const auto give = [](char what) { return [what](const std::stop_token &) { return what; }; };
        const auto held = [&](const std::stop_token &) {
            begun.release();
            gate.acquire();
            return 'a';
        };
        worker.addLatest(held, publish);
        begun.acquire();
        QVERIFY(!worker.hasLatestWaiting()); // it has begun
        worker.add(give('b'), publish);
        worker.addLatest(give('x'), publish);
        worker.add(give('d'), publish);
        worker.addLatest(give('c'), publish);
        QVERIFY(worker.hasLatestWaiting());
        gate.release();
        worker.waitForDone();
        QCOMPARE(published, "abcd");
        worker.add(give('e'), publish);
        QTRY_COMPARE(published, "abcde");
    }

    void nothingHappensOnceItHasGone()
    {
        QByteArray done;
        QSemaphore begun;
        const auto publish = [&](int) { done += " published"; };
        auto worker = std::make_unique<SerialWorker>(u"test"_s);
        worker->add([](const std::stop_token &) { return 0; }, publish);
        worker->add(
            [&](const std::stop_token &stop) {
                begun.release();
                while (!stop.stop_requested())
                    QThread::yieldCurrentThread();
                done += "stopped";
                return 0;
            },
            publish);
        worker->add([&](const std::stop_token &) { return done.append(" begun").isEmpty(); }, publish);
        begun.acquire();
        worker.reset();
        QCoreApplication::processEvents();
        QCOMPARE(done, "stopped");
    }

    void itsThreadStaysAndIsPoliteAsAreTheCommandsThatItRuns()
    {
        const int ours = ::getpriority(PRIO_PROCESS, 0);
        SerialWorker worker(u"test"_s, 15);
        const auto report = [](const std::stop_token &stop) {
            const CommandEnd child = runCommand({u"/bin/cat"_s, {u"/proc/self/stat"_s}}, {}, {}, stop);
            return QList<int>{
                ::gettid(), ::getpriority(PRIO_PROCESS, 0), child.output.split(' ').value(18).toInt()};
        };
        QList<QList<int>> said;
        for (int i = 0; i < 2; ++i) {
            worker.add(report, [&](const QList<int> &each) { said.append(each); });
            worker.waitForDone();
        }
        QCOMPARE(said.last(), said.first());
        QCOMPARE(said.first().sliced(1), QList<int>(2, std::max(ours, 15)));
        QCOMPARE(::getpriority(PRIO_PROCESS, 0), ours);
    }
};

QTEST_GUILESS_MAIN(SerialWorkerTest)
#include "tst_serial_worker.moc"
