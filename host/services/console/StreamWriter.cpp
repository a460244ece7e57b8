#include "StreamWriter.h"

#include "OutputReader.h"
#include "runtime/StartThread.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <iostream>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace host {

struct StreamWriter::State {
    State(std::ostream& target, AskForReader askForReader)
        : stream(target), isReaderGone(std::move(askForReader)) {}

    void writeUntilClosed();
    void write(const std::string& text);
    bool isIdle() const { return waiting.empty() && !isWriting; }

    std::ostream& stream; // the writing thread's alone
    const AskForReader isReaderGone;

    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    std::string waiting;
    bool isWriting = false;
    bool isGood = true;
    bool isClosed = false;
    Losses losses;
};

// What nobody reads is dropped.
void StreamWriter::State::write(const std::string& text) {
    errno = 0;
    stream << text << std::flush;
    if (stream.good())
        return;
    const int failure = errno;
    stream.clear();
    const bool isGone = isReaderGone();
    const std::lock_guard<std::mutex> lock(mutex);
    isGood = !isGone;
    if (isGone)
        return;
    losses.lines += static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
    if (losses.reason.empty())
        losses.reason = failure == 0 ? "a write failed" : std::generic_category().message(failure);
}

void StreamWriter::State::writeUntilClosed() {
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return isClosed || !waiting.empty(); });
        if (waiting.empty())
            return;
        std::string text;
        text.swap(waiting);
        isWriting = true;
        const bool isRead = isGood;
        lock.unlock();
        if (isRead)
            write(text);
        lock.lock();
        isWriting = false;
        changed.notify_all();
    }
}

StreamWriter::StreamWriter(std::ostream& stream, AskForReader isReaderGone)
    : state(std::make_shared<State>(stream, std::move(isReaderGone))) {
    startThread("the output", [shared = state] { shared->writeUntilClosed(); }).detach();
}

StreamWriter::~StreamWriter() {
    const std::lock_guard<std::mutex> lock(state->mutex);
    state->isClosed = true;
    state->waiting.clear();
    state->changed.notify_all();
}

void StreamWriter::write(std::string text) {
    const std::lock_guard<std::mutex> lock(state->mutex);
    if (state->waiting.empty())
        state->waiting = std::move(text);
    else
        state->waiting += text;
    state->changed.notify_all();
}

bool StreamWriter::isIdle() const {
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->isIdle();
}

bool StreamWriter::isGood() const {
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->isGood;
}

StreamWriter::Losses StreamWriter::losses() const {
    const std::lock_guard<std::mutex> lock(state->mutex);
    return state->losses;
}

bool StreamWriter::waitUntilIdle(std::chrono::milliseconds limit) const {
    std::unique_lock<std::mutex> lock(state->mutex);
    return state->changed.wait_for(lock, limit, [this] { return state->isIdle(); });
}

Console::Console() : out(std::cout, outputreader::isGone), error(std::cerr) {}

} // namespace host
