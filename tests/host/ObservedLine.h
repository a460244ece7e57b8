#pragma once

#include "Hex.h"
#include "RecordingCore.h"
#include "ReferenceTelegram.h"
#include "SmallSite.h"
#include "runtime/ExchangeFeed.h"
#include "runtime/RequestEnds.h"

#include <vector>

// The small site's line as its host sees it, with the test in the place of the driver and of the wire: the
// test's thread is the line's.
class ObservedLine : public host::LineListener {
public:
    static constexpr int channelId = 4;
    static constexpr int rtuId = 7;

    explicit ObservedLine(const host::Site& observedSite) : site(observedSite) { open(); }

    host::LineObserver& wire() { return ends.observerOf(channelId); }
    void open(int result = 0) { wire().primaryEnd().linkOpened(result); }

    void send(const QByteArray& telegram) {
        wire().primaryEnd().telegramSent(telegram.constData(), telegram.size(), LinkObserver::Clock::now());
    }
    void failToSend(const QByteArray& telegram) {
        wire().primaryEnd().sendFailed(telegram.constData(), telegram.size());
    }
    void receive(const QByteArray& bytes) {
        wire().primaryEnd().bytesReceived(bytes.constData(), bytes.size(), LinkObserver::Clock::now());
    }
    void discard(const QByteArray& bytes) {
        wire().primaryEnd().bytesDiscarded(bytes.constData(), bytes.size());
    }
    // The driver reports the end of a request.
    void reportAnswer() { report(1); }
    void reportFailure() { report(0); }

    void requestEnded(const host::RequestEnd& end) override { ended.push_back(end); }
    void lineOpened(const host::Channel&, bool onSecondary, int result) override {
        opened.emplace_back(onSecondary, result);
    }

    const host::Site& site;
    RecordingCore core;
    host::ExchangeFeed feed;
    host::RequestEnds ends{site, core, feed, this};
    RtuStatus status; // of the RTU, as the driver counts
    std::vector<host::RequestEnd> ended;
    std::vector<std::pair<bool, int>> opened;

private:
    void report(quint64 answers) {
        ++status.requests;
        status.answers += answers;
        ends.publishRtuStatus(channelId, rtuId, status);
    }
};

inline host::Site serialSite(host::TransmitType type = host::TransmitType::Data) {
    host::Site site = smallSite();
    site.channels[0].type = host::LineType::Serial;
    site.channels[0].primary = host::SerialEnd{"/dev/x"};
    site.channels[0].rtus[0].transmitType = type;
    return site;
}

namespace telegrams {

// Ethernet: registers 100 and 101 of station 5, sequence number 7.
inline const QByteArray readTwoRegisters = ethernetTelegram(7, 0, hex("05 06 01 00 64"));
inline const QByteArray twoRegisters = ethernetTelegram(7, 1, hex("00 00 00 0C 00 00 00 0D"));
inline const QByteArray refusal = ethernetTelegram(7, 2, hex("00 01"));
inline const QByteArray lateAnswer = ethernetTelegram(6, 1, hex("00 00 00 0C 00 00 00 0D"));
inline const QByteArray damagedAnswer =
    withWrongChecksum(ethernetBytes(7, 1, hex("00 00 00 0C 00 00 00 0D"), 19));
// 12 into register 101.
inline const QByteArray writeLevel = ethernetTelegram(7, 0, hex("05 0E 05 00 65 00 00 00 0C"));

// Data Mode: output 200 of station 5 on.
inline const QByteArray switchOn = withChecksum(hex("B5 00 05 0D 03 00 C8 00 01"));
inline const QByteArray positive = withChecksum(hex("B5 02 00 00"));
inline const QByteArray negative = withChecksum(hex("B5 02 00 01"));

} // namespace telegrams
