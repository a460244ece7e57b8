#include "RefereedLine.h"
#include "ReferenceTelegram.h"

namespace {

struct ReadCommand {
    const char* testName;
    quint32 code;
    sim::Media media;
    const char* name; // the referee's
};

void PrintTo(const ReadCommand& command, std::ostream* out) {
    *out << command.name;
}

// Every element has a value of its own, with all four bytes in use.
quint32 valueOf(unsigned element) {
    return element * 2654435761U + 1;
}

class EveryRead : public RefereedLine, public testing::WithParamInterface<ReadCommand> {
protected:
    static constexpr unsigned elements = 65536;

    EveryRead() {
        std::vector<std::uint32_t> values(elements);
        for (unsigned i = 0; i < elements; ++i)
            values[i] = valueOf(i);
        memory().set(GetParam().media, 0, values);
    }

    static QString answerOf(unsigned address, unsigned count) {
        if (address + count > elements)
            return refused;
        return QStringLiteral("response: ") + QString::fromLatin1(toHex(payloadOf(address, count)));
    }

    void read(unsigned address, unsigned count) {
        exchangeAs({GetParam().code, count - 1, address, {}},
                   QStringLiteral("%1, %2 from %3").arg(GetParam().name).arg(count).arg(address),
                   answerOf(address, count));
    }

private:
    static QByteArray payloadOf(unsigned address, unsigned count) {
        QByteArray payload;
        if (!sim::isBits(GetParam().media)) {
            for (unsigned i = 0; i < count; ++i)
                payload += bigEndian32(valueOf(address + i));
            return payload;
        }
        for (unsigned i = 0; i < count; i += 8) {
            unsigned byte = 0;
            for (unsigned bit = 0; bit < 8 && i + bit < count; ++bit)
                byte |= (valueOf(address + i + bit) & 1U) << bit;
            payload += static_cast<char>(byte);
        }
        return payload;
    }
};

} // namespace

TEST_P(EveryRead, IsReadAsMeantWithItsAnswer) {
    for (const unsigned address : {0U, 255U, 256U, 65535U})
        for (const unsigned count : {1U, 2U, 31U, 32U, 127U, 128U})
            read(address, count);
    skipToSequence(65535);
    read(10, 2);
    expectToBeReadAsMeant();
}

INSTANTIATE_TEST_SUITE_P(
    Of, EveryRead,
    testing::Values(ReadCommand{"Counters", 0, sim::Media::Counters, "Read counter(s) (0x00)"},
                    ReadCommand{"Flags", 2, sim::Media::Flags, "Read flag(s) (0x02)"},
                    ReadCommand{"Inputs", 3, sim::Media::Inputs, "Read input(s) (0x03)"},
                    ReadCommand{"Outputs", 5, sim::Media::Outputs, "Read output(s) (0x05)"},
                    ReadCommand{"Registers", 6, sim::Media::Registers, "Read register(s) (0x06)"},
                    ReadCommand{"Timers", 7, sim::Media::Timers, "Read timer(s) (0x07)"}),
    [](const auto& command) { return std::string(command.param.testName); });
