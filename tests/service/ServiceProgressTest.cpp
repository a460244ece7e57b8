#include "windows/ServiceProgress.h"

#include <gtest/gtest.h>

using host::ServicePhase;
using host::ServiceProgress;
using host::ServiceReport;

TEST(ServiceProgress, CountsItsCheckpointsWhileItStarts) {
    ServiceProgress progress;
    for (const unsigned checkpoint : {1U, 2U, 3U}) {
        const ServiceReport report = progress.nextReport();
        EXPECT_EQ(report.phase, ServicePhase::Starting);
        EXPECT_EQ(report.checkpoint, checkpoint);
        EXPECT_GT(report.wait, ServiceProgress::reportPeriod);
        EXPECT_FALSE(report.takesStop);
    }
}

TEST(ServiceProgress, TakesAStopOnceItRuns) {
    ServiceProgress progress;
    progress.nextReport();
    progress.tellRunning();
    const ServiceReport report = progress.nextReport();
    EXPECT_EQ(report.phase, ServicePhase::Running);
    EXPECT_TRUE(report.takesStop);
    EXPECT_EQ(report.checkpoint, 0U);
    EXPECT_EQ(report.wait.count(), 0);
}

TEST(ServiceProgress, CountsAnewWhilePulsesAreEnded) {
    ServiceProgress progress;
    progress.nextReport();
    progress.tellRunning();
    progress.tellStopping();
    EXPECT_EQ(progress.nextReport().checkpoint, 1U);
    progress.tellStopping(); // asked once more
    const ServiceReport report = progress.nextReport();
    EXPECT_EQ(report.phase, ServicePhase::Stopping);
    EXPECT_EQ(report.checkpoint, 2U);
    EXPECT_FALSE(report.takesStop);
}

TEST(ServiceProgress, DoesNotRunAnyMoreOnceItStops) {
    ServiceProgress progress;
    progress.tellStopping();
    progress.tellRunning();
    EXPECT_EQ(progress.nextReport().phase, ServicePhase::Stopping);
}

TEST(ServiceProgress, HasFailedWithTheStatusOfAnEndThatNobodyAskedFor) {
    ServiceProgress progress;
    progress.tellEnded(2);
    const ServiceReport report = progress.nextReport();
    EXPECT_EQ(report.phase, ServicePhase::Stopped);
    EXPECT_EQ(report.exitStatus, 2U);
    EXPECT_EQ(report.checkpoint, 0U);
}

// Or the service manager would start what somebody has stopped, because a controller was silent.
TEST(ServiceProgress, HasNotFailedWhenItWasAskedToStop) {
    ServiceProgress progress;
    progress.tellRunning();
    progress.tellStopping();
    progress.tellEnded(1);
    EXPECT_EQ(progress.nextReport().phase, ServicePhase::Stopped);
    EXPECT_EQ(progress.nextReport().exitStatus, 0U);
}
