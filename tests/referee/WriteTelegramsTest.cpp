#include "RefereedLine.h"

namespace {

struct WriteCommand {
    const char* testName;
    quint32 code;
    const char* name; // the referee's
    std::vector<unsigned> counts;
    bool bits;
};

void PrintTo(const WriteCommand& command, std::ostream* out) {
    *out << command.name;
}

// 63 words are the most that the byte count of a telegram can tell.
const std::vector<unsigned> wordCounts = {1, 2, 31, 32, 63};
const std::vector<unsigned> bitCounts = {1, 2, 31, 32, 127, 128};

class EveryWrite : public RefereedLine, public testing::WithParamInterface<WriteCommand> {
protected:
    void write(unsigned address, unsigned count) {
        const WriteCommand& command = GetParam();
        const QByteArray data = dataOf(count);
        // The count goes out for bits alone, as elements minus one.
        exchangeAs({command.code, count - 1, address, data},
                   QStringLiteral("%1, %2 from %3: %4")
                       .arg(command.name)
                       .arg(count)
                       .arg(address)
                       .arg(QString::fromLatin1(toHex(data))),
                   address + count > 65536 ? refused : acknowledged);
    }

private:
    static QByteArray dataOf(unsigned count) {
        const unsigned size = GetParam().bits ? (count + 7) / 8 : count * 4;
        QByteArray data;
        for (unsigned i = 0; i < size; ++i)
            data += static_cast<char>(0xF1 + 7 * i);
        return data;
    }
};

} // namespace

TEST_P(EveryWrite, IsReadAsMeantWithItsAnswer) {
    for (const unsigned address : {0U, 255U, 256U, 65535U})
        for (const unsigned count : GetParam().counts)
            write(address, count);
    skipToSequence(65535);
    write(10, 2);
    expectToBeReadAsMeant();
}

INSTANTIATE_TEST_SUITE_P(
    Of, EveryWrite,
    testing::Values(WriteCommand{"Counters", 10, "Write counter(s) (0x0a)", wordCounts, false},
                    WriteCommand{"Flags", 11, "Write flag(s) (0x0b)", bitCounts, true},
                    WriteCommand{"Outputs", 13, "Write output(s) (0x0d)", bitCounts, true},
                    WriteCommand{"Registers", 14, "Write register(s) (0x0e)", wordCounts, false},
                    WriteCommand{"Timers", 15, "Write timer(s) (0x0f)", wordCounts, false}),
    [](const auto& command) { return std::string(command.param.testName); });
