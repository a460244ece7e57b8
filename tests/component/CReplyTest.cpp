#include "TaskChannel.h"

#include <HalvexDriverComponent/CReply.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

using Halvex::DriverErrorResult;
using Result = std::optional<DriverErrorResult>;

constexpr int longEnough = 60'000; // milliseconds; only a failing test waits for it

// Every test leaves the process without a reply.
class CReplies : public testing::Test {
public:
    ~CReplies() override { EXPECT_EQ(CReply::liveCount(), 0); }
};

// What a protocol engine does at the end of a request.
void finish(CReply* reply, DriverErrorResult error) {
    if (error != DriverErrorResult::Success)
        reply->errorResult = error;
    if (reply->replyed())
        delete reply;
    else
        reply->setRefer(DriverErrorResult::Success);
}

} // namespace

TEST_F(CReplies, CompletedReplyGivesSuccess) {
    auto* reply = new CReply;
    reply->addRefer();
    reply->setRefer(DriverErrorResult::Success);
    EXPECT_EQ(reply->wait(longEnough), Result(DriverErrorResult::Success));
}

TEST_F(CReplies, SuccessStandsForTheStoredErrorResult) {
    auto* reply = new CReply;
    reply->addRefer();
    finish(reply, DriverErrorResult::TimeOut);
    EXPECT_EQ(reply->wait(longEnough), Result(DriverErrorResult::TimeOut));
}

TEST_F(CReplies, CompletionWithAnErrorGivesThatError) {
    auto* reply = new CReply;
    reply->addRefer();
    reply->setRefer(DriverErrorResult::RtuNotFound);
    EXPECT_EQ(reply->wait(longEnough), Result(DriverErrorResult::RtuNotFound));
}

TEST_F(CReplies, WaitEndsWhenAnotherThreadCompletes) {
    auto* reply = new CReply;
    reply->addRefer();
    std::thread engine([reply] { finish(reply, DriverErrorResult::BadData); });
    EXPECT_EQ(reply->wait(longEnough), Result(DriverErrorResult::BadData));
    engine.join();
}

TEST_F(CReplies, ReplyThatNobodyTookOverIsFreedByTheWaitThatTimesOut) {
    EXPECT_EQ((new CReply)->wait(1), Result());
    EXPECT_EQ(CReply::liveCount(), 0);
}

TEST_F(CReplies, ReplyThatNobodyTookOverIsFreedByItsRelease) {
    (new CReply)->release();
    EXPECT_EQ(CReply::liveCount(), 0);
}

TEST_F(CReplies, DriverFreesAReplyThatNobodyWaitsForAnyMore) {
    auto* reply = new CReply;
    reply->addRefer();
    EXPECT_FALSE(reply->replyed());
    EXPECT_EQ(reply->wait(0), Result());
    EXPECT_EQ(CReply::liveCount(), 1);
    EXPECT_TRUE(reply->replyed());
    delete reply;
}

TEST_F(CReplies, CompletionAfterTheWaitingSideLeftFreesTheReply) {
    auto* reply = new CReply;
    reply->addRefer();
    reply->release();
    reply->setRefer(DriverErrorResult::Success);
    EXPECT_EQ(CReply::liveCount(), 0);
}

TEST_F(CReplies, NoticeIsGivenWhenAnotherThreadCompletes) {
    auto* reply = new CReply;
    reply->addRefer();
    std::vector<DriverErrorResult> told;
    reply->notify([&](DriverErrorResult result) { told.push_back(result); });
    EXPECT_FALSE(reply->replyed());
    EXPECT_TRUE(told.empty());
    std::thread engine([reply] { finish(reply, DriverErrorResult::BadData); });
    engine.join();
    EXPECT_EQ(told, std::vector{DriverErrorResult::BadData});
    EXPECT_EQ(CReply::liveCount(), 0);
}

TEST_F(CReplies, NoticeIsWithdrawnByTheReleaseOfAReplyThatNoDriverTook) {
    auto* reply = new CReply;
    bool isTold = false;
    reply->notify([&](DriverErrorResult) { isTold = true; });
    reply->release();
    EXPECT_FALSE(isTold);
    EXPECT_EQ(CReply::liveCount(), 0);
}

TEST_F(CReplies, NoticeIsGivenAtOnceWhenTheResultIsThere) {
    auto* reply = new CReply;
    reply->addRefer();
    finish(reply, DriverErrorResult::Success);
    std::vector<DriverErrorResult> told;
    reply->notify([&](DriverErrorResult result) { told.push_back(result); });
    EXPECT_EQ(told, std::vector{DriverErrorResult::Success});
}

TEST_F(CReplies, NoticeIsGivenForTheFirstCompletionOnly) {
    auto* reply = new CReply;
    reply->addRefer();
    reply->addRefer();
    std::vector<DriverErrorResult> told;
    reply->notify([&](DriverErrorResult result) { told.push_back(result); });
    reply->setRefer(DriverErrorResult::TimeOut);
    EXPECT_TRUE(reply->replyed());
    EXPECT_EQ(CReply::liveCount(), 1);
    reply->setRefer(DriverErrorResult::BadData);
    EXPECT_EQ(told, std::vector{DriverErrorResult::TimeOut});
}

TEST_F(CReplies, NoticeIsGivenWhenTheChannelGoes) {
    auto channel = std::make_unique<TaskChannel>();
    auto* reply = new CReply(channel.get());
    reply->addRefer();
    std::vector<DriverErrorResult> told;
    reply->notify([&](DriverErrorResult result) { told.push_back(result); });
    channel.reset();
    EXPECT_EQ(told, std::vector{DriverErrorResult::ChannelError});
}

// It asks for the next reply of the same channel, whose lock all of them share.
TEST_F(CReplies, NoticeMayMakeTheNextReplyOfTheChannel) {
    TaskChannel channel;
    auto* reply = new CReply(&channel);
    reply->addRefer();
    reply->notify([&](DriverErrorResult) { (new CReply(&channel))->release(); });
    reply->setRefer(DriverErrorResult::Success);
    EXPECT_EQ(CReply::liveCount(), 0);
}

TEST_F(CReplies, NoticeAskedForAtTheMomentOfCompletionIsGivenOnce) {
    constexpr int rounds = 100;
    constexpr int batchSize = 100;
    TaskChannel channel;
    for (int round = 0; round < rounds; ++round) {
        std::vector<CReply*> replies;
        for (int index = 0; index < batchSize; ++index) {
            replies.push_back(new CReply(&channel));
            replies.back()->addRefer();
        }
        std::atomic<bool> started{false};
        std::atomic<int> told{0};
        std::thread engine([&] {
            started = true;
            for (CReply* reply : replies)
                finish(reply, DriverErrorResult::TimeOut);
        });
        while (!started)
            std::this_thread::yield();
        for (CReply* reply : replies)
            reply->notify([&](DriverErrorResult result) { told += result == DriverErrorResult::TimeOut; });
        engine.join();
        ASSERT_EQ(told, batchSize);
        ASSERT_EQ(CReply::liveCount(), 0);
    }
}

TEST_F(CReplies, ReplyLivesUntilItsLastReferenceIsCompleted) {
    auto* reply = new CReply;
    reply->addRefer();
    reply->addRefer();
    reply->release();
    reply->setRefer(DriverErrorResult::Success);
    EXPECT_EQ(CReply::liveCount(), 1);
    reply->setRefer(DriverErrorResult::Success);
    EXPECT_EQ(CReply::liveCount(), 0);
}

TEST_F(CReplies, FirstCompletionCounts) {
    auto* reply = new CReply;
    reply->addRefer();
    reply->addRefer();
    reply->setRefer(DriverErrorResult::TimeOut);
    reply->setRefer(DriverErrorResult::BadData);
    EXPECT_EQ(reply->wait(longEnough), Result(DriverErrorResult::TimeOut));
}

TEST_F(CReplies, AbandonedReplyOfADroppedPollIsFreedWithItsChannel) {
    {
        TaskChannel channel;
        auto* reply = new CReply(&channel);
        reply->addRefer();
        reply->release();
        EXPECT_EQ(CReply::liveCount(), 1);
    }
    EXPECT_EQ(CReply::liveCount(), 0);
}

TEST_F(CReplies, WhoeverWaitsWhenTheChannelGoesGetsChannelError) {
    auto channel = std::make_unique<TaskChannel>();
    auto* reply = new CReply(channel.get());
    reply->addRefer();
    Result result;
    std::thread waiter([&] { result = reply->wait(longEnough); });
    channel.reset();
    waiter.join();
    EXPECT_EQ(result, Result(DriverErrorResult::ChannelError));
}

TEST_F(CReplies, WaitBegunAfterTheChannelWentGetsChannelError) {
    auto channel = std::make_unique<TaskChannel>();
    auto* reply = new CReply(channel.get());
    reply->addRefer();
    channel.reset();
    EXPECT_EQ(reply->wait(longEnough), Result(DriverErrorResult::ChannelError));
}

TEST_F(CReplies, ResultThatCameBeforeTheChannelWentStays) {
    auto channel = std::make_unique<TaskChannel>();
    auto* reply = new CReply(channel.get());
    reply->addRefer();
    finish(reply, DriverErrorResult::Success);
    channel.reset();
    EXPECT_EQ(reply->wait(longEnough), Result(DriverErrorResult::Success));
}

TEST_F(CReplies, GivingUpAtTheMomentOfCompletionNeitherLeaksNorFreesTwice) {
    constexpr int batches = 1000;
    constexpr int batchSize = 100;
    TaskChannel channel;
    for (int batch = 0; batch < batches; ++batch) {
        std::vector<CReply*> replies;
        for (int index = 0; index < batchSize; ++index) {
            replies.push_back(new CReply(&channel));
            replies.back()->addRefer();
        }
        // Both sides go through the batch at the same time, in the same order.
        std::atomic<bool> started{false};
        std::thread engine([&] {
            started = true;
            for (CReply* reply : replies)
                finish(reply, DriverErrorResult::TimeOut);
        });
        while (!started)
            std::this_thread::yield();
        for (int index = 0; index < batchSize; ++index) {
            CReply* reply = replies[static_cast<std::size_t>(index)];
            if (index % 3 == 0)
                reply->release();
            else
                EXPECT_EQ(reply->wait(0).value_or(DriverErrorResult::TimeOut), DriverErrorResult::TimeOut);
        }
        engine.join();
        ASSERT_EQ(CReply::liveCount(), 0);
    }
}

TEST_F(CReplies, GivingUpAtTheMomentTheChannelGoesNeitherLeaksNorFreesTwice) {
    constexpr int repliesPerChannel = 50;
    for (int round = 0; round < 200; ++round) {
        auto channel = std::make_unique<TaskChannel>();
        std::vector<CReply*> replies;
        for (int index = 0; index < repliesPerChannel; ++index) {
            replies.push_back(new CReply(channel.get()));
            if (index % 2 == 0)
                replies.back()->addRefer();
        }
        std::thread waiter([&] {
            for (CReply* reply : replies)
                reply->release();
        });
        channel.reset();
        waiter.join();
        ASSERT_EQ(CReply::liveCount(), 0);
    }
}
