#pragma once

#include "Dissection.h"
#include "Printers.h"
#include "RecordingCore.h"
#include "TappedLink.h"
#include "TestChannel.h"

#include <SBusEthernetDriver.h>
#include <Simulator.h>

#include <gtest/gtest.h>

// The Ethernet engine on a UDP link to a simulated controller, with a referee from outside that reads what
// goes over the line. The first telegram of each test carries sequence number 0.
class RefereedLine : public testing::Test {
protected:
    static constexpr int lineId = 1;
    static constexpr int station = 5;

    RefereedLine();

    sim::Memory& memory() { return simulator.memory(lineId, station); }

    // Sends one telegram to station 5 and awaits its answer.
    void exchange(const SBusRequestItem& item);
    // The same with another of the stations 0, 5 and 254.
    void exchangeWith(int otherStation, const SBusRequestItem& item);
    // The same, but for an answer that never comes.
    void exchangeInVain(const SBusRequestItem& item);
    // The next telegram carries `sequence`. The numbers up to there go to telegrams that are never sent.
    void skipToSequence(quint16 sequence);
    // As exchange(); the referee is to read `request`, and `answer` with the same sequence number.
    void exchangeAs(const SBusRequestItem& item, const QString& request, const QString& answer);

    // What the referee reads of each datagram.
    QStringList reading() const;
    // Compares it with what exchangeAs() was told.
    void expectToBeReadAsMeant() const;

    sim::Simulator simulator;
    Capture capture;

private:
    void run(const RemoteTerminalUnit& record, const SBusRequestItem& item);

    RecordingCore core;
    TestChannel channel{&core};
    SBusEthernetDriver* const engine = new SBusEthernetDriver(&channel); // the channel's
    quint16 nextSequence = 0;
    QStringList meant;
};
