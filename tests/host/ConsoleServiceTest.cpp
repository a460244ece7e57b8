#include "services/console/ConsoleService.h"

#include "NotingTaker.h"
#include "SmallSite.h"
#include "runtime/ExchangeQueue.h"
#include "services/console/StreamWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <iostream>
#include <mutex>
#include <streambuf>

using testing::HasSubstr;

namespace {

constexpr std::chrono::seconds patience{60};

// A screen that takes nothing until it is let go on.
class StoppedScreen : public std::streambuf {
public:
    void awaitWrite() {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return isAsked; });
    }
    void goOn() {
        const std::lock_guard<std::mutex> lock(mutex);
        isStopped = false;
        changed.notify_all();
    }
    std::string shown() {
        const std::lock_guard<std::mutex> lock(mutex);
        return text;
    }

private:
    std::streamsize xsputn(const char* characters, std::streamsize count) override {
        std::unique_lock<std::mutex> lock(mutex);
        isAsked = true;
        changed.notify_all();
        changed.wait(lock, [this] { return !isStopped; });
        text.append(characters, static_cast<std::size_t>(count));
        return count;
    }
    int_type overflow(int_type character) override {
        const auto one = traits_type::to_char_type(character);
        return xsputn(&one, 1) == 1 ? character : traits_type::eof();
    }

    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    bool isStopped = true;
    bool isAsked = false;
    std::string text;
};

class Frames : public testing::Test {
protected:
    Frames() : before(std::cerr.rdbuf(&screen)) {
        exchange.channelId = 4;
        exchange.sent = {0x05, 0x06, 0x01, 0x00, 0x64, 0x00, 0x00};
    }
    ~Frames() override {
        screen.goOn();
        EXPECT_TRUE(console.error.waitUntilIdle(patience));
        std::cerr.rdbuf(before);
    }

    std::size_t shownFrames() {
        const std::string shown = screen.shown();
        std::size_t count = 0;
        for (auto at = shown.find("<<"); at != std::string::npos; at = shown.find("<<", at + 1))
            ++count;
        return count;
    }

    const host::Site site = smallSite();
    host::ValueStore values{site};
    host::ExchangeFeed exchanges;
    NotingTaker taker;
    host::Messages messages;
    host::RunningSite running{site, values, exchanges, taker, messages, {}, {}};
    host::Exchange exchange;
    StoppedScreen screen;
    std::streambuf* const before;
    host::Console console;
    host::ConsoleService service{console, host::OutputFormat::Lines, "", true};
};

} // namespace

TEST_F(Frames, AreShownUpToTheEnd) {
    screen.goOn();
    ASSERT_EQ(service.start(running), "");
    exchanges.publish(exchange);
    exchanges.publish(exchange);
    service.stop();
    exchanges.publish(exchange);
    EXPECT_TRUE(console.error.waitUntilIdle(patience));
    EXPECT_EQ(shownFrames(), 2U);
}

// A terminal that was stopped: what passes the lines meanwhile is more than is kept for it.
TEST_F(Frames, ThatNobodyReadsPushNoMessageOut) {
    ASSERT_EQ(service.start(running), "");
    messages.tell("begun");
    screen.awaitWrite();
    constexpr std::size_t sent = host::ExchangeQueue::mostWaiting + 100;
    for (std::size_t i = 0; i < sent; ++i)
        exchanges.publish(exchange);
    messages.tell("channel 4: the line failed");
    service.stop();
    screen.goOn();
    EXPECT_TRUE(console.error.waitUntilIdle(patience));
    EXPECT_THAT(screen.shown(), HasSubstr("channel 4: the line failed\n"));
    EXPECT_EQ(shownFrames(), host::ExchangeQueue::mostWaiting);
    EXPECT_THAT(screen.shown(), HasSubstr("  100 frames were lost: more came than was read\n"));
}
