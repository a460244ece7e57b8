#pragma once

#include "LogRecorder.h"
#include "Printers.h"
#include "PublishingRtu.h"
#include "ReferenceTelegram.h"
#include "ScriptedLink.h"
#include "TellingCore.h"
#include "TestChannel.h"

#include <SBusProtocolBase.h>

#include <gtest/gtest.h>

// One exchange of a real protocol over a scripted link: channel 7, RTU 3 at station 5, both connected.
template <typename Driver>
class ExchangeTest : public testing::Test {
protected:
    static constexpr int channelId = 7;
    static constexpr int rtuId = 3;
    // Long enough that it is never waited for where an answer is scripted.
    static constexpr int patientTimeOut = 60'000;
    static constexpr int shortTimeOut = 30;

    explicit ExchangeTest(std::unique_ptr<ScriptedLink> scripted) : link(channel.take(std::move(scripted))) {
        driver->setLink(link);
        useTimeOut(patientTimeOut);
        core.onRtuStatus = [this](const RtuStatus& status) {
            const QStringList traced = log.texts(LogLine::Route::Packet);
            told << QStringLiteral("RTU %1, channel %2, after %3")
                        .arg(status.connected ? QStringLiteral("on") : QStringLiteral("off"),
                             channel.IsConnect() ? QStringLiteral("on") : QStringLiteral("off"),
                             traced.isEmpty() ? QStringLiteral("nothing") : traced.last());
        };
    }

    void useTimeOut(int timeOutMs) {
        rtu = channel.add<PublishingRtu>(stationRecord(rtuId, "5", timeOutMs));
        request.rtu = rtu;
        request.name = "request";
        connect(true);
    }

    void connect(bool connected) {
        rtu->SetConnect(connected, false);
        channel.SetConnect(connected);
        told.clear();
    }

    // Builds the telegram and exchanges it, with the response that the engine would give.
    unsigned read(const SBusRequestItem& item, int payloadSize) {
        response = QByteArray(payloadSize + 2, '\0');
        driver->buildReadFrame(frame, item, 5);
        return driver->transceive(item, frame, response, request, true);
    }

    unsigned write(const SBusRequestItem& item) {
        response.clear();
        driver->buildWriteFrame(frame, item, 5);
        return driver->transceive(item, frame, response, request, false);
    }

    // The frame trace: packet type, '+' for a new entry or '-', text. "5+<< Send frame ", "5-B5 00 ".
    QStringList trace() const {
        QStringList result;
        for (const LogLine& line : log.lines()) {
            EXPECT_EQ(line.route, LogLine::Route::Packet) << line.text;
            EXPECT_EQ(line.channelId, channelId);
            EXPECT_EQ(line.rtuId, rtuId);
            result << QString::number(static_cast<int>(line.packetType)) +
                          QLatin1Char(line.startsEntry ? '+' : '-') + line.text;
        }
        return result;
    }

    // The trace without the sent frame.
    QStringList traceOfAnswer() const {
        QStringList result;
        for (const QString& line : trace())
            if (!line.startsWith('5'))
                result << line;
        return result;
    }

    // The lines of a received frame that fits on one line.
    static QStringList receivedFrame(const QByteArray& bytes) {
        return {"4+>> Receive frame ", "4-" + QString::fromLatin1(toHex(bytes)) + ' '};
    }

    void expectConnected(bool rtuConnected, bool channelConnected) const {
        EXPECT_EQ(rtu->IsConnect(), rtuConnected);
        EXPECT_EQ(channel.IsConnect(), channelConnected);
    }

    TellingCore core;
    LogRecorder log;
    TestChannel channel{&core, channelId};
    ScriptedLink* const link;
    PublishingRtu* rtu = nullptr;
    Driver* const driver = new Driver(&channel);
    // What the host is told of the RTU, each with the channel's state and the last line of the trace at that
    // moment: "RTU off, channel on, after 05 01 ".
    QStringList told;
    SBusRequest request;
    QByteArray frame;
    QByteArray response;
};
