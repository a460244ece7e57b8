#include "ScriptedLink.h"

#include <algorithm>
#include <thread>

ScriptedLink::ScriptedLink(int kind) : linkKind(kind) {}

void ScriptedLink::answer(const QByteArray& bytes) {
    steps.push_back({false, bytes});
}

void ScriptedLink::failNextReceive() {
    steps.push_back({true, {}});
}

void ScriptedLink::reset() {
    calls << QStringLiteral("reset");
}

int ScriptedLink::open() {
    calls << QStringLiteral("open");
    if (failingOpens == 0)
        return 0;
    --failingOpens;
    return 1;
}

void ScriptedLink::close() {
    calls << QStringLiteral("close");
}

int ScriptedLink::send(const char* data, int length, int timeoutMs) {
    calls << QStringLiteral("send %1").arg(timeoutMs);
    if (sendFails) {
        sendFails = false;
        return -1;
    }
    sent << QByteArray(data, length);
    return 0;
}

int ScriptedLink::receive(char* buffer, int capacity, int& received, int timeoutMs) {
    calls << QStringLiteral("receive %1 %2").arg(capacity).arg(timeoutMs);
    received = 0;
    if (steps.empty()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(timeoutMs));
        return 0;
    }
    Step& step = steps.front();
    if (step.fails) {
        steps.pop_front();
        return -1;
    }
    received = std::min(capacity, step.bytes.size());
    std::copy_n(step.bytes.cbegin(), received, buffer);
    step.bytes.remove(0, received);
    // What a stream did not take at once waits for the next call; the rest of a datagram is lost.
    if (step.bytes.isEmpty() || linkKind != serialKind)
        steps.pop_front();
    return 0;
}
