#include "RecordingLink.h"

#include <algorithm>
#include <thread>

namespace host {

void TelegramRecord::add(const TelegramBytes& telegram) {
    const std::lock_guard<std::mutex> lock(mutex);
    telegrams.push_back(telegram);
}

std::vector<TelegramBytes> TelegramRecord::take() {
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<TelegramBytes> taken;
    taken.swap(telegrams);
    return taken;
}

RecordingLink::RecordingLink(LineType type, TelegramRecord& telegramRecord)
    : linkKind(type == LineType::Serial ? serialKind : udpKind), record(telegramRecord) {}

void RecordingLink::reset() {
    clearInterrupt();
}

int RecordingLink::open() {
    noteOpened();
    return 0;
}

int RecordingLink::send(const char* data, int length, int /*timeoutMs*/) {
    noteSent(length, Clock::now());
    record.add(TelegramBytes(data, data + std::max(length, 0)));
    return 0;
}

int RecordingLink::receive(char* /*buffer*/, int /*capacity*/, int& received, int timeoutMs) {
    received = 0;
    if (!isInterrupted())
        std::this_thread::sleep_for(std::chrono::milliseconds(std::max(timeoutMs, 0)));
    return 0;
}

} // namespace host
