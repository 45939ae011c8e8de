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
        const auto held = [&](const std::stop_token &) {
            begun.release();
            gate.acquire();
            return 'a';
        };
        worker.addLatest(held, publish);
        begun.acquire();
        QVERIFY(!worker.hasLatestWaiting()); // it has begun
        const auto give = [](char what) { return [what](const std::stop_token &) { return what; }; };
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
        bool isStopped = false;
        int published = 0;
        const auto publish = [&](int) { ++published; };
        auto worker = std::make_unique<SerialWorker>(u"test"_s);
        QSemaphore begun;
        worker->add([](const std::stop_token &) { return 0; }, publish);
        worker->add(
            [&](const std::stop_token &stop) {
                begun.release();
                while (!stop.stop_requested())
                    QThread::yieldCurrentThread();
                isStopped = true;
                return 0;
            },
            publish);
        bool isLate = false;
        worker->add([&](const std::stop_token &) { return isLate = true; }, publish);
        begun.acquire();
        worker.reset();
        QVERIFY(isStopped && !isLate);
        QCoreApplication::processEvents();
        QCOMPARE(published, 0);
    }

    void itsThreadStaysAndIsPoliteAsAreTheCommandsThatItRuns()
    {
        const int ours = ::getpriority(PRIO_PROCESS, 0);
        SerialWorker worker(u"test"_s, 15);
        QList<pid_t> threads;
        const auto report = [](const std::stop_token &stop) {
            const CommandEnd child = runCommand({u"/bin/cat"_s, {u"/proc/self/stat"_s}}, {}, {}, stop);
            QFile thread(u"/proc/thread-self/stat"_s);
            return std::tuple(
                ::gettid(), child.output.split(' ').value(18).toInt(),
                thread.open(QIODevice::ReadOnly) ? thread.readAll().split(' ').value(18).toInt() : -1);
        };
        for (int i = 0; i < 2; ++i) {
            worker.add(report, [&](const std::tuple<pid_t, int, int> &said) {
                threads.append(std::get<0>(said));
                QCOMPARE(std::get<1>(said), std::max(ours, 15));
                QCOMPARE(std::get<2>(said), std::max(ours, 15));
            });
            worker.waitForDone();
        }
        QCOMPARE(threads, QList<pid_t>(2, threads.value(0)));
        QCOMPARE(::getpriority(PRIO_PROCESS, 0), ours);
    }
};

QTEST_GUILESS_MAIN(SerialWorkerTest)
#include "tst_serial_worker.moc"
