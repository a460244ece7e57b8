#pragma once

#include <HalvexDriverLink/CLink.h>

#include <QByteArray>
#include <QList>

#include <functional>
#include <mutex>

// A datagram link to a controller that answers every read with zeros and every write with a positive
// acknowledge, or keeps silent, both without passing time. Any thread may look on.
class ControllerLink final : public CLink {
public:
    // The next opens give `error`, then opening succeeds again.
    void failOpens(int count, int error = 111);
    void keepSilent();
    // Called with "reset", "open", "close" or "send", before the link does it. Set before the link is used.
    std::function<void(const char*)> onCall = [](const char*) {};

    int openCount() const;
    QList<QByteArray> telegrams() const;

    void reset() override;
    int open() override;
    void close() override;
    int send(const char* data, int length, int timeoutMs) override;
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override;
    int kind() const override { return udpKind; }

private:
    void wake() override {}

    mutable std::mutex mutex;
    int failingOpens = 0;
    int openError = 0;
    bool silent = false;
    int opens = 0;
    QList<QByteArray> sent;
    QByteArray answer; // to the telegram sent last
};
