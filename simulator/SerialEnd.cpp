#include "SerialEnd.h"

#include <algorithm>

namespace sim {

SerialEnd::SerialEnd(asio::io_context& context, Line& servedLine, EndPoint endPoint, bool pace)
    : line(servedLine), where(std::move(endPoint)),
      characterTime(pace ? where.serial.characterTime() : std::chrono::nanoseconds(0)), pty(context),
      receiver(servedLine.framing()), pacer(characterTime), silenceTimer(context), sendTimer(context) {}

std::string SerialEnd::open() {
    close();
    return pty.open(where.path,
                    [this](const std::uint8_t* bytes, std::size_t size) { receive(bytes, size); });
}

void SerialEnd::close() {
    pty.close();
    silenceTimer.cancel();
    sendTimer.cancel();
    receiver = SerialReceiver(line.framing());
    pacer = Pacer(characterTime);
}

void SerialEnd::receive(const std::uint8_t* bytes, std::size_t size) {
    const Clock::time_point now = Clock::now();
    line.countReceived(size);
    pacer.noteRequest(size, now);
    answer(receiver.push(bytes, size, now));
    awaitSilence();
}

void SerialEnd::awaitSilence() {
    silenceTimer.cancel();
    if (!receiver.incomplete())
        return;
    silenceTimer.expires_after(SerialReceiver::silenceLimit);
    silenceTimer.async_wait([this](const std::error_code& error) {
        if (!error)
            answer(receiver.expire(Clock::now()));
    });
}

void SerialEnd::answer(const std::vector<Bytes>& telegrams) {
    line.countLosses(receiver.takeLosses());
    for (const Bytes& telegram : telegrams) {
        const Clock::time_point now = Clock::now();
        for (Answer& next : line.respond(telegram, now))
            pacer.add(std::move(next.bytes), std::max(now, pacer.freeFrom()) + next.delay);
    }
    send();
}

void SerialEnd::send() {
    const Clock::time_point now = Clock::now();
    const Bytes due = pacer.takeDue(now);
    if (!due.empty()) {
        line.countSent(due.size()); // before the other side can see them
        pty.write(due.data(), due.size());
    }
    sendTimer.cancel();
    const auto next = pacer.nextDue(now);
    if (!next)
        return;
    sendTimer.expires_at(*next);
    sendTimer.async_wait([this](const std::error_code& error) {
        if (!error)
            send();
    });
}

} // namespace sim
