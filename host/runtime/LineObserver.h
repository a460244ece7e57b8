#pragma once

#include "ExchangeFeed.h"
#include "LifeSign.h"
#include "RoundTripHistogram.h"
#include "site/Site.h"

#include <HalvexDriverLink/CLink.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <optional>
#include <thread>

namespace host {

// The wire of one line, seen once: makes exchanges of what passes its links. An exchange lasts from one
// telegram to the next one or to endRequest(), so what is read away behind a bad answer belongs to it. While
// nobody watches the feed and every request succeeds, an exchange costs two copies of its bytes and no
// memory. Threads: the line's own, but for isOnItsThread(). Channel and feed outlive it, it outlives the
// links.
class LineObserver {
public:
    using Clock = LinkObserver::Clock;
    // An open of the line has ended with 0 or the system's error number.
    using Opened = std::function<void(bool onSecondary, int result)>;

    LineObserver(const Channel& observedChannel, ExchangeFeed& exchangeFeed, Opened whenOpened);
    LineObserver(const LineObserver&) = delete;
    LineObserver& operator=(const LineObserver&) = delete;
    ~LineObserver() = default;

    // What a link of the line is to be given as its observer.
    LinkObserver& primaryEnd() { return ends[0]; }
    LinkObserver& secondaryEnd() { return ends[1]; }

    // What has passed since the last call of endRequest().
    struct RequestTrace {
        bool hasExchange = false;
        bool hasLineFailed = false;
        bool wasHeard = false;         // something came back to one of its telegrams at least
        TelegramBytes unsent;          // the telegram with which the line failed before it had gone out
        RoundTripHistogram roundTrips; // of its telegrams to which something came back
        // Of a write that the controller refused, whatever the driver made of it.
        std::optional<Exchange> refusedWrite;
    };
    // The request in progress has ended, and its last exchange with it: lastExchange() is that one until the
    // next telegram.
    RequestTrace endRequest();
    // Made anew at each call.
    Exchange lastExchange() const;
    // The bytes of its telegram.
    const TelegramBytes& lastTelegram() const { return current.sent; }
    Framing framing() const { return current.framing; }

    bool onSecondary() const { return current.onSecondary; }
    LifeSign& lifeSign() { return sign; }
    const LifeSign& lifeSign() const { return sign; }
    // Whether this is the thread that uses the links. Any thread.
    bool isOnItsThread() const {
        return thread.load(std::memory_order_acquire) == std::this_thread::get_id();
    }

private:
    class End final : public LinkObserver {
    public:
        End(LineObserver& observedLine, bool isSecondaryEnd)
            : line(observedLine), isSecondary(isSecondaryEnd) {}

        void linkOpened(int result) override { line.opened(isSecondary, result); }
        void telegramSent(const char* bytes, int length, Clock::time_point begun) override {
            line.sent(isSecondary, bytes, length, begun);
        }
        void bytesReceived(const char* bytes, int length, Clock::time_point now) override {
            line.received(bytes, length, now);
        }
        void bytesDiscarded(const char* bytes, int length) override { line.discarded(bytes, length); }
        void sendFailed(const char* bytes, int length) override { line.notSent(bytes, length); }
        void receiveFailed() override { line.failed(); }

    private:
        LineObserver& line;
        const bool isSecondary;
    };

    void opened(bool onSecondaryEnd, int result);
    void sent(bool onSecondaryEnd, const char* bytes, int length, Clock::time_point begun);
    void received(const char* bytes, int length, Clock::time_point now);
    void discarded(const char* bytes, int length);
    void notSent(const char* bytes, int length);
    void failed();
    void endExchange();

    ExchangeFeed& feed;
    const Opened tellOpened;
    std::array<End, 2> ends;
    std::atomic<std::thread::id> thread{std::thread::id()};
    LifeSign sign;

    // The telegram sent last and what came behind it. Its bytes keep their memory for the next one; wall
    // time, station and meaning are made when somebody looks.
    Exchange current;
    bool isOpen = false;               // more may come for it
    TelegramBytes discardedBeforeNext; // what the telegram to be sent next throws away
    RequestTrace request;
};

} // namespace host
