#pragma once

#include "CommandBench.h"
#include "ReferenceTelegram.h"

using Items = QList<SBusRequestItem>;
using Values = QMap<unsigned, double>;

inline QByteArray word(int value) {
    return bigEndian32(static_cast<quint32>(value));
}

// The words of `count` elements from `first`, each holding its element number.
inline QByteArray words(int first, int count) {
    QByteArray bytes;
    for (int number = first; number < first + count; ++number)
        bytes += word(number);
    return bytes;
}

// Builds up a list of values, with a point for each.
class AnalogWriteListBench : public CommandBench {
protected:
    // Adds a point for the element, and its number as the value to write.
    void list(const char* media, int number) { listValue(media, number, number); }

    void list(const char* media, int first, int last) {
        for (int number = first; number <= last; ++number)
            list(media, number);
    }

    void listValue(const char* media, int number, double value,
                   Halvex::PointDataType type = Halvex::PointDataType::Integer) {
        addAnalog(nextPoint, media, QByteArray::number(number).constData(), type);
        values[nextPoint++] = value;
    }

    // A point with any texts in its address fields.
    void listPoint(unsigned pointNumber, const char* address, const char* number, double value = 1) {
        addAnalog(pointNumber, address, number);
        values[pointNumber] = value;
    }

    int write(CReply* reply = nullptr) { return rtu->analogWriteList(values, reply); }

    Command writing() {
        return [this](CReply* reply) { return write(reply); };
    }

    Items telegrams() {
        EXPECT_EQ(write(), accepted);
        return sendOnlyRequest().items;
    }

    // The data of the only telegram, for the only value.
    QByteArray bytesFor(const char* media, double value,
                        Halvex::PointDataType type = Halvex::PointDataType::Integer) {
        values.clear();
        listValue(media, 5, value, type);
        const Items items = telegrams();
        EXPECT_EQ(items.size(), 1);
        return items.isEmpty() ? QByteArray() : toHex(items.first().data);
    }

    void expectAddressRefused(const char* address, const char* number) {
        values.clear();
        listPoint(1, address, number);
        expectRefused(writing(), unsupportedAddress,
                      {QStringLiteral("AO command failed (Addr=") + QString::fromUtf8(address) +
                       " Unsupported Address Format)"});
    }

    Values values;
    unsigned nextPoint = 1;
};
