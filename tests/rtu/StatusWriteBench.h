#pragma once

#include "CommandBench.h"

constexpr signed char off = 0;
constexpr signed char on = 1;

// Point 20 is an output; the test sets up its addresses and values.
class StatusWriteBench : public CommandBench {
protected:
    static constexpr unsigned pointId = 20;

    void setOutputs(const char* firstAddress, const char* firstValue = "", const char* secondAddress = "",
                    const char* secondValue = "") {
        output->firstOutputAddress = QString::fromUtf8(firstAddress);
        output->firstOutputValue = QString::fromUtf8(firstValue);
        output->secondOutputAddress = QString::fromUtf8(secondAddress);
        output->secondOutputValue = QString::fromUtf8(secondValue);
    }

    void makePulse(unsigned widthMs) {
        output->pulse = true;
        output->pulseWidthMs = widthMs;
    }

    int write(signed char command, CReply* reply = nullptr) {
        return rtu->statusWrite(pointId, command, reply);
    }

    // Command on point 20, as the checks common to all commands want it.
    Command switching(signed char command) {
        return [this, command](CReply* reply) { return write(command, reply); };
    }

    // The only telegram that a command sends.
    SBusRequestItem telegramOf(signed char command) {
        EXPECT_EQ(write(command), accepted);
        const SentRequest request = sendOnlyRequest();
        EXPECT_EQ(request.items.size(), 1);
        return request.items.isEmpty() ? SBusRequestItem{} : request.items.first();
    }

    // The byte that is written at O12 with `text` as the first output value.
    QByteArray byteFor(signed char command, const char* text) {
        setOutputs("O12", text);
        return toHex(telegramOf(command).data);
    }

    void expectAddressRefused(signed char command, const QString& loggedAddress) {
        expectRefused(
            switching(command), unsupportedAddress,
            {QStringLiteral("BO command failed (Addr=") + loggedAddress + " Unsupported Address Format)"});
    }

    StatusPoint* const output = addStatus(pointId, "I5");
};
