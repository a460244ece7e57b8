#pragma once

#include <HalvexDriverLink/CLink.h>

#include <QByteArray>
#include <QList>
#include <QStringList>

#include <deque>

// A link that plays a script: it keeps what was sent, and hands out the answers that the test has put in.
// Each wait for an answer takes the next entry; with none left, nothing comes and the time-out passes.
// Waiting passes real time only where a time-out really elapses.
class ScriptedLink : public CLink {
public:
    explicit ScriptedLink(int linkKind = udpKind);

    // The bytes that the next wait receives.
    void answer(const QByteArray& bytes);
    // The next wait finds the link failed.
    void failNextReceive();
    void failNextSend() { sendFails = true; }
    // The next opens fail, then opening succeeds again.
    void failOpens(int count) { failingOpens = count; }

    void reset() override;
    int open() override;
    void close() override;
    int send(const char* data, int length, int timeoutMs) override;
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override;
    int kind() const override { return linkKind; }

    QList<QByteArray> sent;
    QStringList calls; // "reset", "open", "close", "send 5000", "receive 4096 1" (capacity, time-out)

private:
    void wake() override {}

    struct Step {
        bool fails;
        QByteArray bytes;
    };

    const int linkKind;
    std::deque<Step> steps;
    bool sendFails = false;
    int failingOpens = 0;
};
