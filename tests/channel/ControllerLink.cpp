#include "ControllerLink.h"

#include "Telegram.h"

#include <algorithm>

namespace {

// The bytes behind the header: zeros for the elements that are read, or the acknowledge code 0.
QByteArray payloadFor(int command, int elements) {
    const bool readsBits = command == 2 || command == 3 || command == 5;
    if (command >= 10)
        return QByteArray(2, '\0');
    return QByteArray(readsBits ? (elements + 7) / 8 : 4 * elements, '\0');
}

QByteArray answerTo(const QByteArray& telegram) {
    const int command = telegram[10];
    const int elements = static_cast<unsigned char>(telegram[11]) + 1;
    const QByteArray payload = payloadFor(command, elements);
    QByteArray answer(3, '\0');
    answer += static_cast<char>(9 + payload.size() + 2);
    answer += QByteArray("\x01\x00", 2) + telegram.mid(6, 2);
    answer += command >= 10 ? '\x02' : '\x01';
    answer += payload;
    sbus::appendChecksum(answer);
    return answer;
}

} // namespace

void ControllerLink::failOpens(int count, int error) {
    const std::lock_guard lock(mutex);
    failingOpens = count;
    openError = error;
}

void ControllerLink::keepSilent() {
    const std::lock_guard lock(mutex);
    silent = true;
}

int ControllerLink::openCount() const {
    const std::lock_guard lock(mutex);
    return opens;
}

QList<QByteArray> ControllerLink::telegrams() const {
    const std::lock_guard lock(mutex);
    return sent;
}

void ControllerLink::reset() {
    onCall("reset");
}

int ControllerLink::open() {
    onCall("open");
    const std::lock_guard lock(mutex);
    ++opens;
    if (failingOpens == 0)
        return 0;
    --failingOpens;
    return openError;
}

void ControllerLink::close() {
    onCall("close");
}

int ControllerLink::send(const char* data, int length, int) {
    onCall("send");
    const std::lock_guard lock(mutex);
    sent << QByteArray(data, length);
    answer = silent ? QByteArray() : answerTo(sent.last());
    return 0;
}

int ControllerLink::receive(char* buffer, int capacity, int& received, int) {
    const std::lock_guard lock(mutex);
    received = std::min(capacity, answer.size());
    std::copy_n(answer.cbegin(), received, buffer);
    answer.clear();
    return 0;
}
