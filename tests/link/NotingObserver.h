#pragma once

#include <HalvexDriverLink/CLink.h>

#include <Hex.h>

#include <QByteArray>

#include <string>
#include <vector>

// Keeps what a link tells of itself, one text each: "opened 0", "sent 01 02", "received 03", "discarded 04",
// "not sent 01 02", "failed" (to receive).
class NotingObserver : public LinkObserver {
public:
    void linkOpened(int result) override { notes.push_back("opened " + std::to_string(result)); }
    void telegramSent(const char* bytes, int length, Clock::time_point begun) override {
        note("sent", bytes, length);
        sentAt = begun;
    }
    void bytesReceived(const char* bytes, int length, Clock::time_point now) override {
        note("received", bytes, length);
        receivedAt = now;
    }
    void bytesDiscarded(const char* bytes, int length) override { note("discarded", bytes, length); }
    void sendFailed(const char* bytes, int length) override { note("not sent", bytes, length); }
    void receiveFailed() override { notes.emplace_back("failed"); }

    std::vector<std::string> notes;
    Clock::time_point sentAt{};
    Clock::time_point receivedAt{};

private:
    void note(const char* what, const char* bytes, int length) {
        notes.push_back(std::string(what) + " " + toHex(QByteArray(bytes, length)).toStdString());
    }
};
