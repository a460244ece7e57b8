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
