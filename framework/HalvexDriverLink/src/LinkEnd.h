#pragma once

#include "WaitLoop.h"

#include <cerrno>
#include <functional>
#include <mutex>
#include <optional>
#include <utility>

// What both links are made of: an Asio socket or serial port and the loop that waits for it.
//
// States: closed (as made) and open. An operation that fails closes it. Threads: any; operations follow one
// another, and close() ends the wait of one that is under way. No exception leaves it: only an exhausted
// system throws (no memory, no descriptor for the waits), and that fails the operation.
template <class Object>
class LinkEnd {
public:
    using Clock = WaitLoop::Clock;
    using Outcome = WaitLoop::Outcome;

    explicit LinkEnd(std::function<bool()> isInterrupted) : waits(std::move(isInterrupted)) {}

    // Makes a new object and hands it to opening(object), which returns what went wrong. 0, or its number.
    template <class Opening>
    int open(Opening opening) noexcept {
        close();
        try {
            const std::lock_guard lock(busy);
            waits.prepare();
            const asio::error_code error = opening(object.emplace(waits.context()));
            if (error)
                object.reset();
            return error.value();
        } catch (const std::system_error& error) {
            close();
            return error.code().value();
        } catch (...) {
            close();
            return ENOMEM;
        }
    }

    // Runs operation(object), which returns what went wrong. 0, or -1 when it failed or the end is closed.
    template <class Operation>
    int use(Operation operation) noexcept {
        try {
            const std::lock_guard lock(busy);
            if (!object)
                return -1;
            const asio::error_code error = operation(*object);
            if (!error)
                return 0;
            object.reset();
        } catch (...) {
            close();
        }
        return -1;
    }

    void close() noexcept {
        try {
            const WaitLoop::Abandonment abandonment(waits);
            const std::lock_guard lock(busy);
            object.reset();
        } catch (...) {
            return; // a lock that the system refuses
        }
    }

    // Inside use(): one asynchronous operation, waited for until `deadline`.
    template <class Start>
    Outcome perform(Start start, Clock::time_point deadline) {
        const auto cancel = [this] {
            asio::error_code ignored;
            object->cancel(ignored);
        };
        return waits.perform(std::move(start), cancel, deadline);
    }

    WaitLoop& loop() { return waits; }

private:
    std::mutex busy; // held through each operation
    WaitLoop waits;
    std::optional<Object> object;
};
