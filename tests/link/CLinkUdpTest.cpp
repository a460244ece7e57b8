#include "LinkCalls.h"
#include "UdpController.h"

#include <HalvexDriverLink/CLinkUdp.h>

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr int ampleMs = 5000; // for what is certain to come

// A controller and an open link to it; the controller has heard from the link.
struct UdpLine {
    UdpLine() {
        EXPECT_EQ(link.open(), 0);
        exchange("00 00 00 10", "00 00 00 14");
    }

    void exchange(const char* request, const char* answer) {
        EXPECT_EQ(send(link, hex(request)), 0);
        EXPECT_EQ(toHex(controller.receive()), toHex(hex(request)));
        controller.answer(hex(answer));
        EXPECT_EQ(receive(link, 1024, ampleMs), came(answer));
    }

    UdpController controller;
    CLinkUdp link{{"127.0.0.1", controller.port()}};
};

} // namespace

TEST(CLinkUdp, IsOfTheUdpKind) {
    EXPECT_EQ(CLinkUdp({"127.0.0.1", 5050}).kind(), 4);
}

TEST(CLinkUdp, SendsAndReceivesDatagrams) {
    UdpLine line;
    line.exchange("00 00 00 10 01 00 00 01 00 05 06 01 00 0A 9A F9",
                  "00 00 00 13 01 00 00 01 01 00 00 00 07 00 00 00 09 12 34");
}

TEST(CLinkUdp, FindsTheControllerByName) {
    UdpController controller;
    CLinkUdp link({"localhost", controller.port()});
    ASSERT_EQ(link.open(), 0);
    EXPECT_EQ(send(link, hex("01 02")), 0);
    EXPECT_EQ(toHex(controller.receive()), "01 02");
}

TEST(CLinkUdp, UnknownNameIsAnErrorOfOpen) {
    CLinkUdp link({std::string(300, 'x'), 5050});
    EXPECT_GT(link.open(), 0);
    EXPECT_EQ(send(link, hex("01")), -1);
    EXPECT_EQ(link.figures().opens, 0U);
}

TEST(CLinkUdp, OperationsOnAClosedLinkFail) {
    CLinkUdp link({"127.0.0.1", 5050});
    EXPECT_EQ(send(link, hex("01")), -1);
    EXPECT_EQ(receive(link, 16, ampleMs), failed);
    EXPECT_EQ(rxMessage(link, 16, ampleMs), failed);
}

TEST(CLinkUdp, CloseMayComeAtAnyTimeAndMoreThanOnce) {
    UdpLine line;
    line.link.close();
    line.link.close();
    EXPECT_EQ(receive(line.link, 16, ampleMs), failed);
    CLinkUdp neverOpened({"127.0.0.1", 5050});
    neverOpened.close();
}

TEST(CLinkUdp, OpenOnAnOpenLinkStartsFromEmptyInput) {
    UdpLine line;
    line.controller.answer(hex("AA AA"));
    ASSERT_EQ(line.link.open(), 0);
    EXPECT_EQ(receive(line.link, 16, 20), nothing);
    line.exchange("00 00 00 10", "00 00 00 14");
    EXPECT_EQ(line.link.figures().opens, 2U);
}

TEST(CLinkUdp, LateAndDoubledAnswersAreThrownAwayBySendAndCounted) {
    UdpLine line;
    line.controller.answer(hex("0A 0A 0A"));
    line.controller.answer(hex("0B 0B 0B 0B 0B"));
    line.controller.answer(QByteArray(60000, 'z'));
    line.exchange("01 02", "03 04");
    EXPECT_EQ(line.link.figures().bytesDiscarded, 60008U);
}

TEST(CLinkUdp, SendWithoutTimeStillThrowsEverythingAway) {
    UdpLine line;
    line.controller.answer(hex("0A"));
    line.controller.answer(hex("0B"));
    EXPECT_EQ(send(line.link, hex("01"), 0), 0);
    EXPECT_EQ(line.link.figures().bytesDiscarded, 2U);
    EXPECT_EQ(receive(line.link, 16, 20), nothing);
}

TEST(CLinkUdp, ForeignDatagramsAreNeverSeen) {
    UdpLine line;
    UdpController foreigner;
    foreigner.send(hex("66 66"), line.controller.senderPort());
    EXPECT_EQ(receive(line.link, 16, 20), nothing);
    foreigner.send(hex("66 66"), line.controller.senderPort());
    line.controller.answer(hex("01"));
    EXPECT_EQ(receive(line.link, 16, ampleMs), came("01"));
    EXPECT_EQ(receive(line.link, 16, 20), nothing);
    EXPECT_EQ(send(line.link, hex("02")), 0);
    EXPECT_EQ(line.link.figures().bytesDiscarded, 0U);
}

TEST(CLinkUdp, DatagramsAreReceivedOneByOne) {
    UdpLine line;
    line.controller.answer(hex("01 02"));
    line.controller.answer(hex("03"));
    EXPECT_EQ(receive(line.link, 16, ampleMs), came("01 02"));
    EXPECT_EQ(receive(line.link, 16, ampleMs), came("03"));
}

TEST(CLinkUdp, OfADatagramLargerThanTheCapacityTheRestIsLost) {
    UdpLine line;
    line.controller.answer(hex("01 02 03 04 05"));
    line.controller.answer(hex("06"));
    EXPECT_EQ(receive(line.link, 3, ampleMs), came("01 02 03"));
    EXPECT_EQ(receive(line.link, 3, ampleMs), came("06"));
}

TEST(CLinkUdp, NothingFitsIntoNoCapacity) {
    UdpLine line;
    line.controller.answer(hex("01"));
    EXPECT_EQ(receive(line.link, 0, ampleMs), nothing);
    EXPECT_EQ(receive(line.link, 16, ampleMs), came("01"));
}

TEST(CLinkUdp, EmptyDatagramIsNothing) {
    UdpLine line;
    line.controller.answer({});
    EXPECT_EQ(receive(line.link, 16, 20), nothing);
    line.controller.answer({});
    line.controller.answer(hex("01"));
    EXPECT_EQ(receive(line.link, 16, ampleMs), came("01"));
}

TEST(CLinkUdp, ReceiveWithoutTimeTakesWhatIsThere) {
    UdpLine line;
    line.controller.answer(hex("01"));
    EXPECT_EQ(receive(line.link, 16, 0), came("01"));
    EXPECT_EQ(receive(line.link, 16, 0), nothing);
    EXPECT_EQ(receive(line.link, 16, -1), nothing);
}

TEST(CLinkUdp, AbsentControllerThatAppearsIsHeardOnTheSameLink) {
    const std::uint16_t port = unusedUdpPort();
    CLinkUdp link({"127.0.0.1", port});
    ASSERT_EQ(link.open(), 0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(send(link, hex("01")), 0);
        EXPECT_EQ(receive(link, 16, 5), nothing);
    }
    UdpController controller(port);
    EXPECT_EQ(send(link, hex("02")), 0);
    EXPECT_EQ(toHex(controller.receive()), "02");
    controller.answer(hex("03"));
    EXPECT_EQ(receive(link, 16, ampleMs), came("03"));
    EXPECT_EQ(link.figures().opens, 1U);
}

TEST(CLinkUdp, SendsAgainWhereAReportOfAbsenceTookTheFirstSend) {
    CLinkUdp link({"127.0.0.1", unusedUdpPort()});
    ASSERT_EQ(link.open(), 0);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(send(link, hex("01")), 0);
    EXPECT_EQ(link.figures().telegramsSent, 100U);
}

TEST(CLinkUdp, FiguresCountTelegramsAndBytes) {
    UdpLine line;
    line.exchange("01 02 03", "04 05");
    const LinkFigures figures = line.link.figures();
    EXPECT_EQ(figures.telegramsSent, 2U);
    EXPECT_EQ(figures.bytesSent, 7U);
    EXPECT_EQ(figures.bytesReceived, 6U);
    EXPECT_EQ(figures.bytesDiscarded, 0U);
    EXPECT_EQ(figures.opens, 1U);
}
