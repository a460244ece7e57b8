#include "ModelLine.h"

#include "Checksum.h"
#include "SteppedTime.h"

#include <algorithm>
#include <utility>

namespace {

// What becomes of a telegram and its answer.
enum Fate {
    Answered,
    Unanswered,
    Refused,
    Late,
    Doubled,
    Damaged,
    InPieces,
    CutOff,
    MadeUp,
    BehindMadeUp,
    Longer,
    Shorter,
    SendFails,
    ReceiveFails,
    HostEnds,
    fates
};

std::int32_t announcedLength(const QByteArray& bytes) {
    std::uint32_t length = 0;
    for (int at = 0; at < 4; ++at)
        length = length << 8 | static_cast<std::uint8_t>(bytes.at(at));
    return static_cast<std::int32_t>(length);
}

} // namespace

void ModelLine::reset() {
    clearInterrupt();
    close();
}

int ModelLine::open() {
    constexpr int oneOf = 8;
    hasFailedToOpen = input.byte() % oneOf == 1;
    if (hasFailedToOpen)
        return 1;
    isOpen = true;
    discardUnread();
    onOpened();
    return 0;
}

int ModelLine::send(const char* data, int length, int) {
    if (!isOpen)
        return -1;
    onSend();
    discardUnread();
    received.clear();
    failsNextReceive = false;
    endsMeanwhile = false;
    exchanges.emplace_back();
    constexpr std::uint8_t hostIsBusy = 0x80;
    const std::uint8_t choice = input.byte();
    if ((choice & hostIsBusy) != 0)
        onBusy();
    decide(QByteArray(data, length), (choice & ~hostIsBusy) % fates);
    if (isOpen)
        return 0;
    exchanges.back().isDisturbed = true;
    return -1;
}

void ModelLine::discardUnread() {
    if (mode != LineMode::Ethernet)
        arrivals.clear();
    while (!arrivals.empty() && arrivals.front().atMs <= steppedTime::nowMs())
        arrivals.pop_front();
}

int ModelLine::fail() {
    isOpen = false;
    return -1;
}

void ModelLine::decide(const QByteArray& telegram, int fate) {
    const ModelController::Answer answer = answerTo(telegram, fate);
    ownAnswer = answer.bytes;
    said.push_back(answer.bytes);
    Exchange& exchange = exchanges.back();
    exchange.isRead = answer.isRead;
    exchange.isAccepted = answer.isAccepted;
    exchange.isDisturbed = fate != Answered;
    deliver(answer.bytes, fate);
}

ModelController::Answer ModelLine::answerTo(const QByteArray& telegram, int fate) {
    constexpr int mostBytes = 8; // two words
    switch (fate) {
    case Refused:
        return controller.refuse(telegram, input.byte());
    case Longer:
        return controller.respond(telegram, 1 + input.byte() % mostBytes);
    case Shorter:
        return controller.respond(telegram, -1 - input.byte() % mostBytes);
    case SendFails:
        fail();
        return {};
    default:
        return controller.respond(telegram);
    }
}

void ModelLine::deliver(const QByteArray& answer, int fate) {
    constexpr int msInStep = 8; // a byte of the input reaches 2 s, some time-outs
    switch (fate) {
    case Unanswered:
    case SendFails:
        return;
    case Late:
        return arrive(answer, msInStep * input.byte());
    case Doubled:
        arrive(answer);
        return arrive(answer, msInStep * input.byte());
    case Damaged:
        return arrive(damaged(answer));
    case InPieces: {
        const int first = answer.isEmpty() ? 0 : input.byte() % answer.size();
        arrive(answer.left(first));
        return arrive(answer.mid(first), input.byte());
    }
    case CutOff:
        return arrive(answer.left(answer.isEmpty() ? 0 : input.byte() % answer.size()));
    case MadeUp:
        return arrive(madeUp());
    case BehindMadeUp:
        arrive(madeUp());
        return arrive(answer);
    case ReceiveFails:
        failsNextReceive = true;
        return;
    case HostEnds:
        endsMeanwhile = true;
        return;
    default:
        return arrive(answer);
    }
}

void ModelLine::arrive(const QByteArray& bytes, std::int64_t afterMs) {
    if (bytes.isEmpty())
        return;
    const std::int64_t atMs = steppedTime::nowMs() + afterMs;
    const auto later = std::find_if(arrivals.begin(), arrivals.end(),
                                    [=](const Arrival& other) { return other.atMs > atMs; });
    arrivals.insert(later, {atMs, bytes});
}

QByteArray ModelLine::damaged(QByteArray bytes) {
    const int flips = 1 + input.byte() % 4;
    for (int i = 0; i < flips && !bytes.isEmpty(); ++i) {
        const int at = input.byte() % bytes.size();
        bytes[at] = static_cast<char>(bytes.at(at) ^ input.byte());
    }
    return bytes;
}

QByteArray ModelLine::madeUp() {
    constexpr int most = 32;
    QByteArray bytes(1 + input.byte() % most, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(input.byte());
    return bytes;
}

int ModelLine::receive(char* buffer, int capacity, int& count, int timeoutMs) {
    count = 0;
    if (std::exchange(endsMeanwhile, false)) {
        onShutdown();
        interrupt();
    }
    if (!isOpen || std::exchange(failsNextReceive, false))
        return fail();
    if (isInterrupted())
        return 0;
    const std::int64_t deadline = steppedTime::nowMs() + timeoutMs;
    if (arrivals.empty() || arrivals.front().atMs > deadline) {
        steppedTime::pass(timeoutMs);
        return 0;
    }
    Arrival& next = arrivals.front();
    steppedTime::pass(std::max<std::int64_t>(0, next.atMs - steppedTime::nowMs()));
    QByteArray bytes = next.bytes.left(capacity);
    next.bytes.remove(0, bytes.size());
    // What a serial line's reader did not take at once waits for it; the rest of a datagram is lost.
    if (next.bytes.isEmpty() || mode == LineMode::Ethernet)
        arrivals.pop_front();
    // A late datagram disturbs an exchange that nothing else has disturbed.
    if (mode == LineMode::Ethernet && bytes != ownAnswer)
        exchanges.back().isDisturbed = true;
    spoilForgery(bytes, capacity);
    received += bytes;
    count = bytes.size();
    std::copy_n(bytes.cbegin(), count, buffer);
    return 0;
}

// `wanted`: how many bytes the driver was ready to take. On a serial line that makes its telegram whole; on
// Ethernet the telegram announces its own length.
void ModelLine::spoilForgery(QByteArray& bytes, int wanted) {
    constexpr int lengthSize = 4;
    const QByteArray all = received + bytes;
    int end = received.size() + wanted;
    if (mode == LineMode::Ethernet) {
        if (all.size() < lengthSize)
            return;
        end = announcedLength(all);
    }
    const int last = end - 1 - received.size();
    if (last < 0 || last >= bytes.size())
        return;
    const QByteArray telegram = all.left(end);
    if (endsWithItsChecksum(telegram) && !isSaid(telegram))
        bytes[last] = static_cast<char>(bytes.at(last) ^ 1);
}

bool ModelLine::isSaid(const QByteArray& telegram) const {
    if (mode != LineMode::Ethernet)
        return telegram == ownAnswer;
    return std::find(said.crbegin(), said.crend(), telegram) != said.crend();
}
