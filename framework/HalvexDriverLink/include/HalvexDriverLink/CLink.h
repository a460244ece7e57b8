#pragma once

#include <HalvexDriverLink/Export.h>

#include <atomic>
#include <chrono>
#include <cstdint>

// What a link has seen since it was made. Read on any thread; each figure is exact, the set is not a
// snapshot.
struct LinkFigures {
    std::uint64_t telegramsSent = 0;
    std::uint64_t bytesSent = 0;
    std::uint64_t bytesReceived = 0;
    std::uint64_t bytesDiscarded = 0; // unread bytes thrown away before a send
    std::uint64_t opens = 0;
};

// The time from the start of a send to the last byte received after it.
struct RoundTrips {
    std::uint32_t count = 0;
    std::chrono::microseconds last{0};
    std::chrono::microseconds slowest{0};
};

// Sees what passes a link: the host's own view of the wire. Called on the thread that uses the link, which it
// holds up. Bytes are good during the call alone.
class HALVEXDRIVERLINK_EXPORT LinkObserver {
public:
    using Clock = std::chrono::steady_clock;

    LinkObserver() = default;
    LinkObserver(const LinkObserver&) = delete;
    LinkObserver& operator=(const LinkObserver&) = delete;
    virtual ~LinkObserver();

    // An open() has ended with `result`: 0, or the system's error number.
    virtual void linkOpened(int result) = 0;
    // `begun`: just before the write.
    virtual void telegramSent(const char* bytes, int length, Clock::time_point begun) = 0;
    virtual void bytesReceived(const char* bytes, int length, Clock::time_point now) = 0;
    // Unread bytes are thrown away before a send.
    virtual void bytesDiscarded(const char* bytes, int length) = 0;
    // A send is about to fail: these bytes have not gone out, or not all of them.
    virtual void sendFailed(const char* bytes, int length) = 0;
    // A receive is about to fail.
    virtual void receiveFailed() = 0;
};

// One end of a line to the controllers: a serial device or a UDP peer.
//
// States: closed (as made) and open. Every operation may be called in either; on a closed link send and
// receive fail. A link that fails while in use closes itself.
// Threads: one thread at a time, any thread; only interrupt() and close() may come from another thread
// meanwhile, and end a wait.
// No operation throws. Times are in milliseconds and run on the steady clock.
class HALVEXDRIVERLINK_EXPORT CLink {
public:
    // Names alone: a constant that had a place in memory would have to be found in the library.
    enum Kind : int { serialKind = 3, udpKind = 4 };

    CLink() = default;
    CLink(const CLink&) = delete;
    CLink& operator=(const CLink&) = delete;
    virtual ~CLink();

    // Prepares the link for a new life: closes it and takes back an interrupt().
    virtual void reset() = 0;
    // Opens the link, closing it first when it is open. 0, or the system's error number. The input is empty.
    virtual int open() = 0;
    virtual void close() = 0;
    // Discards what is unread, then sends all of `data`. 0, or -1 when the link failed.
    virtual int send(const char* data, int length, int timeoutMs) = 0;
    // Waits for the first bytes (serial), at most `timeoutMs`, or for one datagram (UDP), with the promise of
    // rxMessage(). 0 with `received` 0 when nothing came; -1 when the link failed. Of a datagram beyond
    // `capacity` the rest is lost.
    virtual int receive(char* buffer, int capacity, int& received, int timeoutMs) = 0;
    // serialKind or udpKind.
    virtual int kind() const = 0;

    // Collects `wanted` bytes until all are there, `timeoutMs` is over, or, once the first byte is there,
    // the line has been silent for longer than `silenceMs`. 0 with the count in `received`, -1 when the
    // link failed. When nothing comes it returns only after a clock of whole milliseconds, started before
    // the call, shows more than `timeoutMs`.
    int rxMessage(char* buffer, int wanted, int& received, int timeoutMs, int silenceMs);

    // Ends a wait in progress, as if nothing had come, and every later one at once, until reset(). Any
    // thread.
    void interrupt();

    // Before the first open; the observer outlives the link. Null: nobody looks.
    void setObserver(LinkObserver* linkObserver) { observer = linkObserver; }

    LinkFigures figures() const;
    // The round trips since the last call of this operation. The link's own thread.
    RoundTrips takeRoundTrips();

protected:
    using Clock = std::chrono::steady_clock;

    bool isInterrupted() const { return interrupted.load(std::memory_order_acquire); }
    void clearInterrupt() { interrupted.store(false, std::memory_order_release); }
    // Wakes the wait that interrupt() is to end. Called on the interrupting thread.
    virtual void wake() = 0;

    // What every link tells of itself. The results of each open, send and receive pass through the first
    // three, which give them back.
    int noteOpened(int result);
    int noteSendEnded(int result, const char* bytes, int length);
    int noteReceiveEnded(int result);
    // `begun`: just before the write; the answer may be there before the write returns.
    void noteSent(const char* bytes, int length, Clock::time_point begun);
    void noteReceived(const char* bytes, int length);
    void noteDiscarded(const char* bytes, int length);

private:
    // Counts the round trip in progress: no more bytes belong to it.
    void closeRoundTrip();

    LinkObserver* observer = nullptr;
    std::atomic<bool> interrupted{false};
    std::atomic<std::uint64_t> telegramsSent{0};
    std::atomic<std::uint64_t> bytesSent{0};
    std::atomic<std::uint64_t> bytesReceived{0};
    std::atomic<std::uint64_t> bytesDiscarded{0};
    std::atomic<std::uint64_t> opens{0};
    Clock::time_point sentAt{};
    bool awaitingAnswer = false;
    std::chrono::microseconds currentRoundTrip{0};
    RoundTrips roundTrips;
};
