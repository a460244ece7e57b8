#include <HalvexDriverComponent/CThread.h>

#include <gtest/gtest.h>

namespace {

class LoopingThread : public CThread {
protected:
    void run() override {
        while (!IsShutdown())
            msleep(1);
    }
};

} // namespace

TEST(CThread, StartsWithoutShutdown) {
    EXPECT_FALSE(CThread().IsShutdown());
}

TEST(CThread, TellsThatItRuns) {
    LoopingThread thread;
    EXPECT_TRUE(thread.StartThread());
    EXPECT_TRUE(thread.isRunning());
    EXPECT_TRUE(thread.StartThread()); // already
    thread.SetShutdown(true);
    EXPECT_TRUE(thread.wait());
    thread.SetShutdown(false);
    EXPECT_TRUE(thread.StartThread()); // once more
    EXPECT_TRUE(thread.isRunning());
    thread.SetShutdown(true);
    EXPECT_TRUE(thread.wait());
}

TEST(CThread, TellsThatTheSystemHasNoThreadToGive) {
    LoopingThread thread;
    thread.setStackSize(1); // less than the system lets a thread have
    EXPECT_FALSE(thread.StartThread());
    EXPECT_FALSE(thread.isRunning());
    EXPECT_TRUE(thread.wait(0)); // nobody hangs on it
    thread.setStackSize(0);
    EXPECT_TRUE(thread.StartThread());
    thread.SetShutdown(true);
    EXPECT_TRUE(thread.wait());
}

TEST(CThread, ShutdownSetOnAnotherThreadEndsTheLoop) {
    LoopingThread thread;
    thread.start();
    EXPECT_FALSE(thread.wait(20));
    thread.SetShutdown(true);
    EXPECT_TRUE(thread.wait());
}

TEST(CThread, ShutdownCanBeTakenBack) {
    CThread thread;
    thread.SetShutdown(true);
    EXPECT_TRUE(thread.IsShutdown());
    thread.SetShutdown(false);
    EXPECT_FALSE(thread.IsShutdown());
}
