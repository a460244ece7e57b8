// A program with faults on purpose, one a run: "race", "inversion"; and "none", which does correctly what
// they do wrongly.
#include <QMutex>
#include <QMutexLocker>
#include <QThread>
#include <QWaitCondition>

#include <atomic>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>

namespace {

class TaskThread : public QThread {
public:
    explicit TaskThread(std::function<void()> threadTask) : task(std::move(threadTask)) { start(); }
    ~TaskThread() override { wait(); }

protected:
    void run() override { task(); }

private:
    const std::function<void()> task;
};

// Both are there before either goes on. Relaxed, so that it orders nothing.
class Meeting {
public:
    void await() {
        arrived.fetch_add(1, std::memory_order_relaxed);
        while (arrived.load(std::memory_order_relaxed) < 2)
            QThread::yieldCurrentThread();
    }

private:
    std::atomic<int> arrived{0};
};

int counter = 0;

// Two writers, each behind a lock of its own.
void race() {
    QMutex oneMutex;
    QMutex otherMutex;
    Meeting meeting;
    const auto countBehind = [&meeting](QMutex& mutex) {
        meeting.await();
        const QMutexLocker lock(&mutex);
        ++counter;
    };
    const TaskThread one([&] { countBehind(oneMutex); });
    const TaskThread other([&] { countBehind(otherMutex); });
}

void lockBoth(QMutex& first, QMutex& second) {
    const QMutexLocker lock(&first);
    const QMutexLocker innerLock(&second);
    ++counter;
}

// One after the other, so that the program ends.
void inversion() {
    QMutex oneMutex;
    QMutex otherMutex;
    {
        const TaskThread thread([&] { lockBoth(oneMutex, otherMutex); });
    }
    {
        const TaskThread thread([&] { lockBoth(otherMutex, oneMutex); });
    }
}

// Each takes its turn when the number has its own parity.
void countInTurns() {
    constexpr int last = 2'000;
    QMutex mutex;
    QWaitCondition changed;
    int number = 0;
    const auto countFrom = [&](int parity) {
        const QMutexLocker lock(&mutex);
        while (number < last) {
            if (number % 2 == parity) {
                ++number;
                changed.wakeAll();
            } else {
                changed.wait(&mutex, 1);
            }
        }
    };
    const TaskThread even([&] { countFrom(0); });
    countFrom(1);
}

void countWithWhateverLockSucceeds() {
    constexpr int rounds = 2'000;
    QMutex mutex;
    int number = 0;
    const auto count = [&] {
        for (int done = 0; done < rounds;) {
            if (!mutex.tryLock(done % 3))
                continue;
            ++number;
            ++done;
            mutex.unlock();
        }
    };
    const TaskThread one(count);
    count();
}

// What a thread leaves behind is read without a lock, at once or long after its end.
void readWhatThreadsLeft() {
    for (int round = 0; round < 200; ++round) {
        const auto left = std::make_unique<int>(0);
        TaskThread thread([&left] { *left = 1; });
        if (round % 2 == 1)
            QThread::msleep(1);
        thread.wait();
        counter += *left;
    }
}

// The mutexes of each round lie where those of the last one lay, and are taken the other way round.
void takeNewLocksInEitherOrder() {
    for (int round = 0; round < 10; ++round) {
        QMutex mutexes[2];
        const TaskThread thread([&] { lockBoth(mutexes[round % 2], mutexes[1 - round % 2]); });
    }
}

// Another thread's event loop carries out what is posted to it, waited for or not.
void postToAnotherThread() {
    QThread thread;
    thread.start();
    auto receiver = std::make_unique<QObject>();
    receiver->moveToThread(&thread);
    int posted = 0;
    int awaited = 0;
    for (int round = 0; round < 200; ++round) {
        QMetaObject::invokeMethod(
            receiver.get(), [&posted] { ++posted; }, Qt::QueuedConnection);
        const auto addRound = [&] { awaited += posted + round; };
        QMetaObject::invokeMethod(receiver.get(), addRound, Qt::BlockingQueuedConnection);
        counter += awaited;
    }
    thread.quit();
    thread.wait();
    counter += posted;
}

void none() {
    postToAnotherThread();
    countInTurns();
    countWithWhateverLockSucceeds();
    readWhatThreadsLeft();
    takeNewLocksInEitherOrder();
}

} // namespace

int main(int argc, char** argv) {
    const std::string fault = argc == 2 ? argv[1] : "";
    if (fault == "race")
        race();
    else if (fault == "inversion")
        inversion();
    else if (fault == "none")
        none();
    else
        return 2;
    std::puts("done");
    return 0;
}
