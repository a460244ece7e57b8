#include "EngineTest.h"

namespace {

class FrameLogTest : public EngineTest {
protected:
    QStringList dumpOf(const QByteArray& bytes, Halvex::PacketType type = Halvex::PacketType::Sent) {
        log.clear();
        protocol->logFrame(11, 12, type, bytes.constData(), bytes.size());
        return log.texts(LogLine::Route::Packet);
    }
};

const QString eighteenZeros = QString("00 ").repeated(18);

} // namespace

TEST_F(FrameLogTest, BytesAreUpperCaseHexEachWithABlankBehind) {
    EXPECT_EQ(dumpOf(hex("B5 00 0A")), QStringList{"B5 00 0A "});
}

TEST_F(FrameLogTest, NoBytesAreOneEmptyLine) {
    EXPECT_EQ(dumpOf({}), QStringList{""});
}

TEST_F(FrameLogTest, EighteenBytesAreOneLine) {
    EXPECT_EQ(dumpOf(QByteArray(18, '\0')), QStringList{eighteenZeros});
}

TEST_F(FrameLogTest, NineteenBytesAreALineOfEighteenAndALineOfOne) {
    EXPECT_EQ(dumpOf(QByteArray(18, '\0') + hex("FF")), (QStringList{eighteenZeros, "FF "}));
}

TEST_F(FrameLogTest, EveryLineGoesOnWithTheEntryUnderTheGivenNumbers) {
    for (const Halvex::PacketType type : {Halvex::PacketType::Sent, Halvex::PacketType::Received}) {
        dumpOf(QByteArray(19, '\0'), type);
        const QList<LogLine> lines = log.lines();
        ASSERT_EQ(lines.size(), 2);
        for (const LogLine& line : lines) {
            EXPECT_EQ(line.route, LogLine::Route::Packet);
            EXPECT_EQ(line.packetType, type);
            EXPECT_FALSE(line.startsEntry);
            EXPECT_EQ(line.channelId, 11);
            EXPECT_EQ(line.rtuId, 12);
        }
    }
}
