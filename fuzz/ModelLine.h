#pragma once

#include "FuzzInput.h"
#include "ModelController.h"

#include <HalvexDriverLink/CLink.h>

#include <deque>
#include <functional>
#include <vector>

// What became of one telegram.
struct Exchange {
    bool isRead = false;
    bool isAccepted = false;  // the controller has carried it out
    bool isDisturbed = false; // something else than its whole answer came, or not at once
};

// The line to the model controllers. The input's next byte decides what becomes of each telegram and its
// answer. Times are stepped: a wait for an answer passes them on.
//
// Nothing with a right checksum arrives but what a controller has said: an answer that the input has damaged
// or made up and that would pass for a good one gets a wrong checksum.
//
// On a serial line no answer arrives after the next telegram: nothing in it tells to which telegram it
// belongs, so that a late one of the right length passes for the next one's, which no driver can help.
class ModelLine final : public CLink {
public:
    ModelLine(LineMode lineMode, ModelController& answering, FuzzInput& decisions)
        : mode(lineMode), controller(answering), input(decisions) {}

    void reset() override;
    int open() override;
    void close() override { isOpen = false; }
    int send(const char* data, int length, int timeoutMs) override;
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override;
    int kind() const override { return mode == LineMode::Ethernet ? udpKind : serialKind; }

    // Of the turn of the channel's loop: what the harness looks at and clears.
    std::vector<Exchange> exchanges;
    bool hasFailedToOpen = false;

    int lateArrivals() const { return static_cast<int>(arrivals.size()); }

    std::function<void()> onOpened;
    // Before each telegram; then, if the input says so, a moment for the host to act while the engine is at
    // work.
    std::function<void()> onSend;
    std::function<void()> onBusy;
    // The host ends while the answer is awaited.
    std::function<void()> onShutdown;

private:
    struct Arrival {
        std::int64_t atMs;
        QByteArray bytes;
    };

    void wake() override {}
    void discardUnread();
    int fail();
    void decide(const QByteArray& telegram, int fate);
    ModelController::Answer answerTo(const QByteArray& telegram, int fate);
    void deliver(const QByteArray& answer, int fate);
    void arrive(const QByteArray& bytes, std::int64_t afterMs = 0);
    QByteArray damaged(QByteArray bytes);
    QByteArray madeUp();
    void spoilForgery(QByteArray& bytes, int wanted);
    bool isSaid(const QByteArray& telegram) const;

    const LineMode mode;
    ModelController& controller;
    FuzzInput& input;
    bool isOpen = false;
    bool failsNextReceive = false;
    bool endsMeanwhile = false;
    std::deque<Arrival> arrivals; // by time
    QByteArray received;          // since the last send
    QByteArray ownAnswer;         // the controller's, to the last telegram
    std::vector<QByteArray> said; // by controllers, all of which can come again
};
