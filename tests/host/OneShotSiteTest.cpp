#include "plan/OneShotSite.h"
#include "plan/ReadPlan.h"

#include <gtest/gtest.h>

namespace host {
namespace {

ControllerLine serialLine() {
    ControllerLine line;
    line.end = SerialEnd{"/dev/ttyUSB0"};
    line.station = 5;
    line.timeout = std::chrono::milliseconds(300);
    line.transmitType = TransmitType::Break;
    line.breakDelayMs = 7;
    return line;
}

std::vector<ElementRead> elements(std::initializer_list<const char*> texts) {
    std::vector<ElementRead> all;
    for (const char* const text : texts)
        for (const ElementRead& element : parseElementReads(text).elements)
            all.push_back(element);
    return all;
}

std::vector<ElementWrite> writes(std::initializer_list<const char*> texts) {
    std::vector<ElementWrite> all;
    for (const char* const text : texts)
        all.push_back(parseElementWrite(text).write);
    return all;
}

// What each RTU reads.
std::vector<std::string> chunks(std::initializer_list<const char*> texts) {
    std::vector<std::string> all;
    const Site site = makeReadSite(serialLine(), elements(texts));
    for (const Rtu& rtu : site.channels.at(0).rtus)
        all.push_back(elementsText(rtu));
    return all;
}

using Texts = std::vector<std::string>;

} // namespace

TEST(ReadSite, TakesLineAndStationAsGiven) {
    const Site site = makeReadSite(serialLine(), elements({"R1"}));
    const Channel& channel = site.channels.at(0);
    EXPECT_EQ(channel.type, LineType::Serial);
    const Rtu& rtu = channel.rtus.at(0);
    EXPECT_EQ(rtu.station, 5U);
    EXPECT_EQ(rtu.timeout.count(), 300);
    EXPECT_EQ(rtu.transmitType, TransmitType::Break);
    EXPECT_EQ(rtu.breakDelayMs, 7U);
    EXPECT_EQ(rtu.scan.integrity.count(), 0) << "nothing is read again by itself";
}

TEST(ReadSite, HasAnRtuForEachRunOfElements) {
    EXPECT_EQ(chunks({"R12", "R10..11", "F5", "R20"}), (Texts{"F5", "R10..12", "R20"}));
}

TEST(ReadSite, CutsLongRunsWhereTelegramsEnd) {
    EXPECT_EQ(chunks({"R0..127"}), (Texts{"R0..126", "R127"}));
    EXPECT_EQ(chunks({"T0..31"}), (Texts{"T0..30", "T31"}));
}

// No RTU may need an element beside those that were asked for.
TEST(ReadSite, NeedsNoHiddenPoints) {
    for (const char* const range : {"R0..127", "R0..254", "I5..132", "T0..31", "C0..62", "R0..4999"}) {
        const Site site = makeReadSite(serialLine(), elements({range}));
        for (const Rtu& rtu : site.channels.at(0).rtus)
            EXPECT_TRUE(planReads(rtu).hidden.empty()) << range;
    }
}

TEST(ReadSite, ReadsAnElementOnceThatIsAskedForInTwoWays) {
    const Site site = makeReadSite(serialLine(), elements({"R30", "R30:float", "R30"}));
    ASSERT_EQ(site.channels[0].rtus.size(), 1U);
    const std::vector<Point>& points = site.channels[0].rtus[0].points;
    ASSERT_EQ(points.size(), 3U);
    EXPECT_FALSE(points[0].isFloat);
    EXPECT_TRUE(points[1].isFloat);
    EXPECT_EQ(points[2].id, 2U);
}

TEST(WriteSite, ReadsNoOutputsAndFlags) {
    const Site site = makeWriteSite(serialLine(), writes({"O200=1", "R10=12", "F3=0", "T5=1"}));
    EXPECT_EQ(elementsText(site.channels[0].rtus.at(0)), "R10, T5");
}

// The driver's word for 0.0 is about -4 to the controller; an integer 0 is the floating-point 0.
TEST(WriteSite, WritesAFloatingPointZeroAsAnInteger) {
    const Site site = makeWriteSite(serialLine(), writes({"R1:float=0", "R2:float=-0.0", "R3:float=0.5"}));
    const std::vector<Point>& points = site.channels[0].rtus.at(0).points;
    EXPECT_FALSE(points.at(0).isFloat);
    EXPECT_FALSE(points.at(1).isFloat);
    EXPECT_TRUE(points.at(2).isFloat);
}

TEST(ControllerLine, IsNamedByItsEndAndStation) {
    ControllerLine line;
    line.end = UdpEnd{"192.168.10.5"};
    line.station = 5;
    EXPECT_EQ(nameOf(line), "udp://192.168.10.5:5050, station 5");
}

TEST(ControllerLine, HintsAtTheHostThatMayHaveASerialLine) {
    EXPECT_NE(lineInUseHint(serialLine()).find("sbus-host ctl"), std::string::npos);
    EXPECT_EQ(lineInUseHint(ControllerLine()), "");
}

} // namespace host
