#pragma once

#include <asio/error.hpp>
#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>

// Runs the asynchronous operations of one link, one at a time, on the thread that called the link: each is
// tried at once and then waited for until a deadline.
//
// States: without a context (as made, so that making a link cannot fail) and, after the first prepare(), with
// one that stays until the end. Threads: one at a time, except wake() and Abandonment.
class WaitLoop {
public:
    using Clock = std::chrono::steady_clock;

    // `isInterrupted` says whether waits are to end at once; any thread may be asking.
    explicit WaitLoop(std::function<bool()> isInterrupted);

    // Makes the context. Throws when the system has no descriptor left for it.
    void prepare();
    asio::io_context& context() { return *ioContext; }

    // Lets a wait in progress look again at whether it is interrupted. Any thread.
    void wake();

    // While one lives, waits end at once: with it a thread takes the link from one that is waiting.
    class Abandonment {
    public:
        explicit Abandonment(WaitLoop& loop);
        Abandonment(const Abandonment&) = delete;
        Abandonment& operator=(const Abandonment&) = delete;
        ~Abandonment();

    private:
        WaitLoop& waitLoop;
    };

    struct Outcome {
        asio::error_code error;
        std::size_t count = 0;

        // Neither done nor failed when its time was over.
        bool isUnfinished() const { return error == asio::error::operation_aborted; }
    };

    // Starts an operation with start(handler) and waits for it. At the deadline it is taken back with
    // cancel(); what it transferred at that very moment is in the outcome like any other bytes.
    template <class Start, class Cancel>
    Outcome perform(Start start, Cancel cancel, Clock::time_point deadline) {
        Outcome outcome;
        bool finished = false;
        start([&outcome, &finished](const asio::error_code& error, std::size_t count) {
            outcome = {error, count};
            finished = true;
        });
        waitUntil(deadline, finished);
        if (!finished) {
            cancel();
            runOut(finished);
        }
        return outcome;
    }

    // Whether waits may go on.
    bool mayWait() const;
    // Waits, while nothing else goes on.
    void sleepUntil(Clock::time_point deadline);

private:
    void waitUntil(Clock::time_point deadline, const bool& finished);
    // The handler writes to its caller's variables, so it must have run before they go.
    void runOut(const bool& finished);

    const std::function<bool()> interrupted;
    std::atomic<int> abandonments{0};
    std::mutex making; // prepare() against wake()
    std::unique_ptr<asio::io_context> ioContext;
    // A context that has run out of work stops, and would have to be started again.
    using Work = asio::executor_work_guard<asio::io_context::executor_type>;
    std::optional<Work> work;
};
