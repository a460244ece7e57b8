#include "EndPoint.h"
#include "FloatWord.h"
#include "Setting.h"
#include "Units.h"

#include <gtest/gtest.h>

using namespace sim;
using namespace std::chrono_literals;

TEST(Durations, NeedAUnit) {
    EXPECT_EQ(parseDuration("300ms"), 300ms);
    EXPECT_EQ(parseDuration("1.5s"), 1500ms);
    EXPECT_EQ(parseDuration("2m"), 2min);
    EXPECT_EQ(parseDuration("2min"), 2min);
    EXPECT_EQ(parseDuration("1h"), 1h);
    for (const char* text : {"", "10", "s", "-1s", "1 s", "1.2.3s", "1d", "1e9h", "9999999h"})
        EXPECT_FALSE(parseDuration(text)) << text;
}

TEST(EndPoints, ReadAUdpAddress) {
    EndPoint end;
    std::string error;
    ASSERT_TRUE(parseEndPoint("udp://192.168.10.5:5050", end, error)) << error;
    EXPECT_EQ(end.kind, EndPoint::Kind::Udp);
    EXPECT_EQ(end.host, "192.168.10.5");
    EXPECT_EQ(end.port, 5050);
    ASSERT_TRUE(parseEndPoint("udp://[::1]:5051", end, error)) << error;
    EXPECT_EQ(end.host, "::1");
    EXPECT_EQ(end.port, 5051);
}

TEST(EndPoints, ReadASerialDevice) {
    EndPoint end;
    std::string error;
    ASSERT_TRUE(parseEndPoint("serial:/dev/ttyUSB0?baud=19200&parity=even&stop=2", end, error)) << error;
    EXPECT_EQ(end.kind, EndPoint::Kind::Serial);
    EXPECT_EQ(end.path, "/dev/ttyUSB0");
    EXPECT_EQ(end.serial.baud, 19200U);
    EXPECT_EQ(end.serial.parity, Parity::Even);
    EXPECT_EQ(end.serial.stopBits, 2U);
}

TEST(EndPoints, SayWhatIsWrong) {
    EndPoint end;
    std::string error;
    EXPECT_FALSE(parseEndPoint("tcp://host:1", end, error));
    EXPECT_EQ(error, "must begin with udp:// or serial:");
    for (const char* text : {"udp://host", "udp://:5050", "udp://host:65536", "udp://host:x"}) {
        EXPECT_FALSE(parseEndPoint(text, end, error)) << text;
        EXPECT_EQ(error, "needs a host and a port, as in udp://192.168.10.5:5050");
    }
    EXPECT_FALSE(parseEndPoint("serial:?baud=9600", end, error));
    EXPECT_FALSE(parseEndPoint("serial:/dev/a?baud=fast", end, error));
    EXPECT_EQ(error, "baud must be a number of bits a second, as in baud=19200");
    EXPECT_FALSE(parseEndPoint("serial:/dev/a?parity=maybe", end, error));
    EXPECT_FALSE(parseEndPoint("serial:/dev/a?stop=3", end, error));
}

TEST(Settings, FixAnElementOfAStation) {
    Setting setting;
    std::string error;
    ASSERT_TRUE(parseSetting("5/R200=7", setting, error)) << error;
    EXPECT_FALSE(setting.lineId);
    EXPECT_EQ(setting.station, 5);
    EXPECT_EQ(setting.media, Media::Registers);
    EXPECT_EQ(setting.address, 200U);
    EXPECT_EQ(setting.value, 7U);
}

TEST(Settings, MayNameTheLine) {
    Setting setting;
    std::string error;
    ASSERT_TRUE(parseSetting("2:5/O3=1", setting, error)) << error;
    EXPECT_EQ(setting.lineId, 2);
    EXPECT_EQ(setting.media, Media::Outputs);
}

TEST(Settings, TakeASmallMediaLetter) {
    Setting setting;
    std::string error;
    ASSERT_TRUE(parseSetting("5/r7=1", setting, error)) << error;
    EXPECT_EQ(setting.media, Media::Registers);
}

TEST(Settings, TakeNegativeHexadecimalAndFloatingPointValues) {
    Setting setting;
    std::string error;
    ASSERT_TRUE(parseSetting("5/R1=-2", setting, error)) << error;
    EXPECT_EQ(setting.value, 0xFFFFFFFEU);
    ASSERT_TRUE(parseSetting("5/R1=0x80000041", setting, error)) << error;
    EXPECT_EQ(setting.value, 0x80000041U);
    ASSERT_TRUE(parseSetting("5/R1=7.0", setting, error)) << error;
    EXPECT_EQ(setting.value, encodeFloatWord(7.0));
}

TEST(Settings, SayWhatIsWrong) {
    Setting setting;
    std::string error;
    EXPECT_FALSE(parseSetting("R200=7", setting, error));
    EXPECT_EQ(error, "'R200=7': the station comes first, as in 5/R200=7 or, on line 2, 2:5/R200=7");
    EXPECT_FALSE(parseSetting("255/R200=7", setting, error)) << "nobody has the broadcast station";
    EXPECT_FALSE(parseSetting("5/X200=7", setting, error));
    EXPECT_EQ(error, "'5/X200=7': 'X200' is no element; write I, O, F, R, T or C and a number");
    EXPECT_FALSE(parseSetting("5/R65536=7", setting, error));
    EXPECT_FALSE(parseSetting("5/F1=2", setting, error));
    EXPECT_EQ(error, "'5/F1=2': '2' is no value of F1; write 0 or 1");
    EXPECT_FALSE(parseSetting("5/R1=4294967296", setting, error));
    EXPECT_FALSE(parseSetting("5/R1=", setting, error));
}
