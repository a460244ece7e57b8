#pragma once

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CRtu.h>

#include <QVector>

#include <functional>
#include <mutex>
#include <utility>

// An RTU that remembers which polls it was asked for.
class TestRtu : public CRtu {
public:
    using CRtu::CRtu;

    int RequestPoll(int kind, CReply*) override {
        polls << kind;
        return 0;
    }
    bool InitRtu() override {
        ++initCount;
        return true;
    }
    ~TestRtu() override {
        if (onDestroyed)
            onDestroyed();
    }

    QVector<int> polls;
    int initCount = 0;
    std::function<void()> onDestroyed;
};

// A channel whose thread does what a test hands it.
class TaskChannel : public CChannel {
public:
    explicit TaskChannel(HalvexDriverCoreInterface* hostCore = nullptr, int channelNumber = 1)
        : CChannel(hostCore, channelNumber) {}

    bool InitChannel() override { return true; }
    void CloseChannel() override {}
    CRtu* CreateRtu(const RemoteTerminalUnit& info) override { return new TestRtu(GetCore(), this, info); }

    // Runs `task` on the channel's thread and waits for its end.
    void onItsThread(std::function<void()> task) {
        {
            const std::lock_guard<std::mutex> lock(workMutex);
            work = std::move(task);
        }
        start();
        wait();
        const std::lock_guard<std::mutex> lock(workMutex);
        work = nullptr;
    }

    TestRtu* addRtu(int rtuId, const ScanPeriods& periods = {}, bool enabled = true) {
        RemoteTerminalUnit info;
        info.id = rtuId;
        info.enabled = enabled;
        info.periods = periods;
        return static_cast<TestRtu*>(AddRtu(info));
    }

protected:
    void run() override {
        const std::lock_guard<std::mutex> lock(workMutex);
        work();
    }

private:
    std::mutex workMutex; // known to the thread sanitizer, unlike the start and end of a QThread
    std::function<void()> work;
};
