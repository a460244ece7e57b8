#include "Bench.h"

#include <gtest/gtest.h>

using namespace sim;
using namespace std::chrono_literals;

namespace {

const std::string readRequest = "B5 00 05 06 00 00 0A 2E 57";
const std::string answer = "B5 01 00 00 00 00 12 FC";
const std::string writeRequest = "B5 00 05 0E 05 00 0A 00 00 00 07 59 D0";

// One text for all that befell `count` answers.
std::string course(std::uint64_t seed, const Faults& faults, int count = 200) {
    Bench bench(Framing::DataMode, {5}, seed);
    bench.line.setFaults(faults);
    std::string all;
    for (int i = 0; i < count; ++i) {
        for (const Answer& each : bench.askEach(readRequest))
            all += toHex(each.bytes) + " after " + std::to_string(each.delay.count());
        all += "\n";
    }
    return all;
}

Faults someOfEach() {
    Faults faults;
    std::string error;
    EXPECT_TRUE(parseFaults("drop=10%,late=10%,duplicate=10%,crc=10%,nak=10%,short=10%", faults, error))
        << error;
    return faults;
}

Faults always(double Faults::*kind) {
    Faults faults;
    faults.*kind = 1.0;
    return faults;
}

} // namespace

TEST(Faults, TheSameSeedMisbehavesTheSameWay) {
    EXPECT_EQ(course(7, someOfEach()), course(7, someOfEach()));
}

TEST(Faults, AnotherSeedMisbehavesAnotherWay) {
    EXPECT_NE(course(7, someOfEach()), course(8, someOfEach()));
}

TEST(Faults, SettingThemBeginsAfresh) {
    Bench bench(Framing::DataMode, {5}, 7);
    std::vector<std::string> rounds;
    for (int round = 0; round < 2; ++round) {
        bench.line.setFaults(someOfEach());
        std::string all;
        for (int i = 0; i < 50; ++i)
            all += bench.ask(readRequest) + "\n";
        rounds.push_back(all);
    }
    EXPECT_EQ(rounds[0], rounds[1]);
}

TEST(Faults, OneShareLeavesTheOthersMishapsWhereTheyWere) {
    MishapGenerator one(7, 1);
    MishapGenerator other(7, 1);
    const Faults late = always(&Faults::late);
    Faults both = late;
    both.drop = 0.5;
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(one.next(late).cut, other.next(both).cut);
}

TEST(Faults, SharesComeOutAboutRight) {
    MishapGenerator generator(1, 1);
    Faults faults;
    faults.drop = 0.2;
    int dropped = 0;
    for (int i = 0; i < 10000; ++i)
        dropped += generator.next(faults).drop ? 1 : 0;
    EXPECT_NEAR(dropped, 2000, 200);
}

TEST(Faults, NoneByItself) {
    EXPECT_EQ(course(1, Faults(), 3),
              (answer + " after 0\n") + answer + " after 0\n" + answer + " after 0\n");
}

TEST(Faults, ADroppedAnswerLeavesTheRequestObeyed) {
    Bench bench(Framing::DataMode);
    bench.line.setFaults(always(&Faults::drop));
    EXPECT_EQ(bench.ask(writeRequest), "");
    EXPECT_EQ(bench.memory().get(Media::Registers, 10), 7U);
    EXPECT_EQ(bench.counts().faults.drop, 1U);
}

TEST(Faults, ARefusedRequestIsNotObeyed) {
    Bench bench(Framing::DataMode);
    bench.line.setFaults(always(&Faults::nak));
    EXPECT_EQ(bench.ask(writeRequest), "B5 02 00 01 33 D5");
    EXPECT_EQ(bench.memory().get(Media::Registers, 10), 0U);
    EXPECT_EQ(bench.counts().faults.nak, 1U);
}

TEST(Faults, ALateAnswerIsTheRightOneLater) {
    Bench bench(Framing::DataMode);
    Faults late = always(&Faults::late);
    late.lateBy = 700ms;
    bench.line.setFaults(late);
    const std::vector<Answer> answers = bench.askEach(readRequest);
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(toHex(answers[0].bytes), answer);
    EXPECT_EQ(answers[0].delay, 700ms);
}

TEST(Faults, ADuplicateIsTheSameAnswerTwice) {
    Bench bench(Framing::DataMode);
    bench.line.setFaults(always(&Faults::duplicate));
    EXPECT_EQ(bench.ask(readRequest), answer + " " + answer);
}

TEST(Faults, ASpoiltChecksumHasItsLastByteInverted) {
    Bench bench(Framing::DataMode);
    bench.line.setFaults(always(&Faults::crc));
    Bytes spoilt = hex(answer);
    spoilt.back() = static_cast<std::uint8_t>(~spoilt.back());
    EXPECT_EQ(bench.ask(readRequest), toHex(spoilt));
}

TEST(Faults, AShortAnswerIsABeginningOfIt) {
    Bench bench(Framing::DataMode);
    bench.line.setFaults(always(&Faults::shorten));
    for (int i = 0; i < 100; ++i) {
        const std::string beginning = bench.ask(readRequest);
        EXPECT_FALSE(beginning.empty());
        EXPECT_LT(beginning.size(), answer.size());
        EXPECT_EQ(answer.substr(0, beginning.size()), beginning);
    }
}

TEST(Faults, OfASingleByteNothingIsLeft) {
    Bench bench(Framing::BreakMode);
    bench.line.setFaults(always(&Faults::shorten));
    EXPECT_EQ(bench.ask("05 0E 05 00 0A 00 00 00 07 A6 33"), "");
    EXPECT_EQ(bench.counts().faults.shortened, 1U);
}

TEST(Faults, DoNotTouchWhatIsNotAnswered) {
    Bench bench(Framing::DataMode);
    bench.line.setFaults(always(&Faults::nak));
    EXPECT_EQ(bench.ask("B5 00 07 06 00 00 0A 6A D4"), "");
    EXPECT_EQ(bench.ask("B5 00 FF 0E 05 00 0A 00 00 00 07 A2 21"), "");
    EXPECT_EQ(bench.counts().faults.nak, 0U);
    EXPECT_EQ(bench.memory().get(Media::Registers, 10), 7U);
}

TEST(Faults, UnknownNamesAndSharesAreErrors) {
    Faults faults;
    std::string error;
    EXPECT_FALSE(parseFaults("lost=5%", faults, error));
    EXPECT_EQ(error, "no fault is called 'lost': choose from drop, late, duplicate, crc, nak, short");
    EXPECT_FALSE(parseFaults("drop=5%,", faults, error));
    EXPECT_EQ(error, "no fault is called '': choose from drop, late, duplicate, crc, nak, short");
    for (const char* text : {"drop", "drop=5", "drop=101%", "drop=-1%", "drop=x%", "drop=nan%"}) {
        EXPECT_FALSE(parseFaults(text, faults, error)) << text;
        EXPECT_EQ(error, "drop needs a share from 0% to 100%, as in drop=5%");
    }
}
