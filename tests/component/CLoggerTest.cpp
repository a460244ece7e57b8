#include "LogRecorder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

CLogger* logger() {
    return CLogger::GetInstance();
}

QString text(const char* latin1) {
    return QString::fromLatin1(latin1);
}

} // namespace

TEST(CLogger, IsOnePerProcess) {
    EXPECT_EQ(CLogger::GetInstance(), CLogger::GetInstance());
}

TEST(CLogger, WatcherSeesEachLineWithItsOriginAndLevel) {
    const LogRecorder recorder;
    logger()->writeAll(2, 5, Halvex::LogLevel::RequestFailure, text("Request result : Timeout"));
    logger()->writeFile(3, 0, Halvex::LogLevel::CommandFailure, text("lost"));
    const auto lines = recorder.lines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0].route, LogLine::Route::All);
    EXPECT_EQ(lines[0].channelId, 2);
    EXPECT_EQ(lines[0].rtuId, 5);
    EXPECT_EQ(lines[0].level, Halvex::LogLevel::RequestFailure);
    EXPECT_EQ(lines[0].text, text("Request result : Timeout"));
    EXPECT_EQ(lines[1].route, LogLine::Route::File);
    EXPECT_EQ(lines[1].level, Halvex::LogLevel::CommandFailure);
}

TEST(CLogger, FrameWatcherSeesFramesWithTypeAndEntryFlag) {
    const LogRecorder recorder;
    logger()->writeConPacket(2, 5, Halvex::PacketType::Sent, text("<< Send frame "), true);
    logger()->writeConPacket(2, 5, Halvex::PacketType::Sent, text("B5 00 "), false);
    const auto lines = recorder.lines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0].route, LogLine::Route::Packet);
    EXPECT_EQ(lines[0].packetType, Halvex::PacketType::Sent);
    EXPECT_TRUE(lines[0].startsEntry);
    EXPECT_FALSE(lines[1].startsEntry);
}

TEST(CLogger, LineWatcherSeesNoFrames) {
    std::vector<LogLine> seen;
    const auto subscription = logger()->watchLines([&](const LogLine& line) { seen.push_back(line); });
    const LogRecorder frames; // so that the trace is on
    logger()->writeConPacket(1, 1, Halvex::PacketType::Received, text("00 "), false);
    logger()->writeAll(1, 1, Halvex::LogLevel::Success, text("line"));
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0].text, text("line"));
}

TEST(CLogger, EndedSubscriptionSeesNothing) {
    int seen = 0;
    auto subscription = logger()->watchLinesAndFrames([&](const LogLine&) { ++seen; });
    logger()->writeAll(1, 0, Halvex::LogLevel::Success, text("a"));
    subscription.reset();
    logger()->writeAll(1, 0, Halvex::LogLevel::Success, text("b"));
    logger()->writeConPacket(1, 0, Halvex::PacketType::Sent, text("c"), true);
    EXPECT_EQ(seen, 1);
}

TEST(CLogger, WatcherRunsOnTheWritingThread) {
    std::thread::id watcherThread;
    const auto subscription =
        logger()->watchLines([&](const LogLine&) { watcherThread = std::this_thread::get_id(); });
    std::thread::id writingThread;
    std::thread writer([&] {
        writingThread = std::this_thread::get_id();
        logger()->writeAll(1, 0, Halvex::LogLevel::Success, text("a"));
    });
    writer.join();
    EXPECT_EQ(watcherThread, writingThread);
}

TEST(CLogger, EndOfASubscriptionWaitsForACallInProgress) {
    std::atomic<bool> entered{false};
    std::atomic<bool> left{false};
    auto subscription = logger()->watchLines([&](const LogLine&) {
        entered = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        left = true;
    });
    std::thread writer([] { logger()->writeAll(1, 0, Halvex::LogLevel::Success, text("a")); });
    while (!entered)
        std::this_thread::yield();
    subscription.reset();
    EXPECT_TRUE(left);
    writer.join();
}

TEST(CLogger, WatcherMayLogAndIsNotCalledForItsOwnLine) {
    int calls = 0;
    const auto subscription = logger()->watchLines([&](const LogLine&) {
        ++calls;
        logger()->writeAll(1, 0, Halvex::LogLevel::Success, text("from the watcher"));
    });
    const LogRecorder recorder;
    logger()->writeAll(1, 0, Halvex::LogLevel::Success, text("first"));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(recorder.texts(LogLine::Route::All), (QStringList{text("from the watcher"), text("first")}));
}

TEST(CLogger, WatcherMayEndItsOwnSubscription) {
    int calls = 0;
    std::unique_ptr<CLogger::Subscription> subscription;
    subscription = logger()->watchLines([&](const LogLine&) {
        ++calls;
        subscription.reset();
    });
    logger()->writeAll(1, 0, Halvex::LogLevel::Success, text("a"));
    logger()->writeAll(1, 0, Halvex::LogLevel::Success, text("b"));
    EXPECT_EQ(calls, 1);
}

TEST(CLogger, WatcherThatThrowsDisturbsNobody) {
    const auto subscription =
        logger()->watchLines([](const LogLine&) { throw std::runtime_error("watcher"); });
    const LogRecorder recorder;
    logger()->writeAll(1, 0, Halvex::LogLevel::Success, text("a"));
    EXPECT_EQ(recorder.lines().size(), 1);
}

TEST(CLogger, SubscriptionsComeAndGoWhileOthersWrite) {
    std::atomic<bool> ended{false};
    std::vector<std::thread> writers;
    for (int channel = 1; channel <= 3; ++channel)
        writers.emplace_back([&ended, channel] {
            while (!ended) {
                logger()->writeAll(channel, 0, Halvex::LogLevel::Success, text("line"));
                logger()->writeConPacket(channel, 0, Halvex::PacketType::Sent, text("frame"), true);
            }
        });
    for (int round = 0; round < 100; ++round) {
        // The counter dies with the round: a call after the end of the subscription would be an error.
        auto seen = std::make_unique<std::atomic<int>>(0);
        auto subscription = logger()->watchLinesAndFrames([&seen](const LogLine&) { ++*seen; });
        std::this_thread::yield();
        subscription.reset();
    }
    ended = true;
    for (std::thread& writer : writers)
        writer.join();
}
