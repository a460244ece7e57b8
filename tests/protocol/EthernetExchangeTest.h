#pragma once

#include "ExchangeTest.h"

#include <SBusEthernetDriver.h>

#include <thread>

// A datagram link on which silence lasts a little longer than it was waited for, so that what was measured
// in whole milliseconds is never just the time-out itself.
class SlowScriptedLink : public ScriptedLink {
public:
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override {
        const int result = ScriptedLink::receive(buffer, capacity, received, timeoutMs);
        if (result == 0 && received == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return result;
    }
};

// An exchange over Ethernet. The first telegram of each test carries sequence number 0.
class EthernetExchangeTest : public ExchangeTest<SBusEthernetDriver> {
protected:
    static constexpr quint8 dataResponse = 1;
    static constexpr quint8 acknowledge = 2;

    EthernetExchangeTest() : ExchangeTest(std::make_unique<SlowScriptedLink>()) {}

    unsigned readRegisters() { return read({6, 1, 10, {}}, 8); }
    unsigned writeRegister() { return write({14, 0, 200, hex("FF FF FF FE")}); }

    static QByteArray registers(quint16 sequence = 0) {
        return ethernetTelegram(sequence, dataResponse, hex("00 00 00 07 FF FF FF FE"));
    }

    static QByteArray acknowledged(quint16 sequence = 0, quint16 code = 0) {
        return ethernetTelegram(sequence, acknowledge, bigEndian16(code));
    }

    static QByteArray damaged(QByteArray telegram) {
        telegram[telegram.size() - 1] = static_cast<char>(telegram[telegram.size() - 1] ^ 1);
        return telegram;
    }

    static QStringList received(const QByteArray& telegram) {
        QStringList lines{"4+>> Receive frame "};
        for (int i = 0; i < telegram.size(); i += 18)
            lines << "4-" + QString::fromLatin1(toHex(telegram.mid(i, 18))) + ' ';
        return lines;
    }
};
