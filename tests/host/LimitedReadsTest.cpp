#include "ReadItems.h"
#include "Sanitized.h"
#include "plan/ReadPlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

// Telegrams for controllers that take less, or do not have every element, against the driver's own building
// of telegrams.

using host::ReadShare;
using host::ReadTelegram;
using host::RefusedReads;
using host::Rtu;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int rounds = isSanitized ? 30 : 200;
const std::map<char, unsigned> readCommands = {{'C', 0}, {'F', 2}, {'I', 3}, {'O', 5}, {'R', 6}, {'T', 7}};

Rtu rtuWith(const std::map<char, std::set<unsigned>>& elements) {
    Rtu rtu;
    for (const auto& [media, numbers] : elements)
        for (const unsigned number : numbers) {
            host::Point point;
            point.address = {media, number};
            point.kind = host::isBitMedia(media) ? host::PointKind::Status : host::PointKind::Analog;
            rtu.points.push_back(point);
        }
    return rtu;
}

std::set<unsigned> run(unsigned first, unsigned length) {
    std::set<unsigned> elements;
    for (unsigned element = first; element < first + length; ++element)
        elements.insert(element);
    return elements;
}

// What the driver makes of the elements of a share.
std::vector<ReadTelegram> driverTelegrams(const ReadShare& share) {
    std::map<char, sbus::MediaAddressSet> sets;
    for (const ReadTelegram& telegram : allTelegrams(share))
        for (unsigned element = telegram.first; element <= telegram.last(); ++element)
            sets[telegram.media][static_cast<int>(element)] = 1;
    std::vector<ReadTelegram> telegrams;
    for (const bool bits : {true, false})
        for (const auto& [media, set] : sets)
            if (host::isBitMedia(media) == bits)
                for (const SBusRequestItem& item : sbus::buildReadItems(QString(QLatin1Char(media)), set)) {
                    EXPECT_EQ(item.command, readCommands.at(media));
                    telegrams.push_back({media, item.address, item.count + 1});
                }
    return telegrams;
}

std::vector<ReadTelegram> planned(const host::RtuReadPlan& plan) {
    std::vector<ReadTelegram> telegrams = allTelegrams(plan);
    for (const ReadTelegram& telegram : allTelegrams(plan.second))
        telegrams.push_back(telegram);
    return telegrams;
}

// A controller of random abilities.
class Controller {
public:
    explicit Controller(std::mt19937& randomNumbers) : random(randomNumbers) {
        words = number(1, 140);
        bits = number(1, 140);
    }

    void takeWords(unsigned most) { words = most; }
    void lose(char media, unsigned element) { lost.insert({media, element}); }
    bool has(const host::ElementAddress& element) const { return lost.count(element) == 0; }
    unsigned mostOf(char media) const { return host::isBitMedia(media) ? bits : words; }

    bool answers(const ReadTelegram& telegram) const {
        if (telegram.count > mostOf(telegram.media))
            return false;
        for (unsigned element = telegram.first; element <= telegram.last(); ++element)
            if (!has({telegram.media, element}))
                return false;
        return true;
    }

    unsigned number(unsigned lowest, unsigned highest) {
        return std::uniform_int_distribution<unsigned>(lowest, highest)(random);
    }

private:
    std::mt19937& random;
    unsigned words = 0;
    unsigned bits = 0;
    std::set<host::ElementAddress> lost;
};

std::set<unsigned> wantedOf(const Rtu& rtu, const ReadTelegram& telegram) {
    const std::set<unsigned> all = polledElements(rtu).at(telegram.media);
    return {all.lower_bound(telegram.first), all.upper_bound(telegram.last())};
}

// Sends one poll's telegrams and what follows from refusals. Returns how many were refused.
unsigned poll(const Rtu& rtu, const Controller& controller, RefusedReads& refused) {
    std::vector<ReadTelegram> toSend = planned(planReads(rtu, refused));
    unsigned refusals = 0;
    while (!toSend.empty()) {
        const ReadTelegram telegram = toSend.back();
        toSend.pop_back();
        if (controller.answers(telegram)) {
            refused.answered(telegram);
            continue;
        }
        ++refusals;
        for (const ReadTelegram& piece : refused.refused(telegram, wantedOf(rtu, telegram)))
            toSend.push_back(piece);
    }
    return refusals;
}

void expectAsTheDriverBuilds(const host::RtuReadPlan& plan) {
    EXPECT_EQ(driverTelegrams(plan), allTelegrams(plan));
    EXPECT_EQ(driverTelegrams(plan.second), allTelegrams(plan.second));
}

void expectEveryPointReadOnce(const Rtu& rtu, const std::vector<ReadTelegram>& telegrams,
                              const RefusedReads& refused) {
    std::multiset<host::ElementAddress> read;
    for (const ReadTelegram& telegram : telegrams)
        for (unsigned element = telegram.first; element <= telegram.last(); ++element)
            read.insert({telegram.media, element});
    for (const host::Point& point : rtu.points)
        ASSERT_EQ(read.count(point.address), refused.isAbsent(point.address) ? 0U : 1U)
            << toText(point.address);
}

} // namespace

TEST(LimitedReads, TakeTurnsBetweenTwoRtusWhereTelegramsTouch) {
    Rtu rtu = rtuWith({{'R', run(0, 50)}});
    rtu.limits.readWords = 20;
    const host::RtuReadPlan plan = planReads(rtu);
    EXPECT_THAT(plan.analog, ElementsAre(ReadTelegram{'R', 0, 20}, ReadTelegram{'R', 40, 10}));
    EXPECT_THAT(plan.second.analog, ElementsAre(ReadTelegram{'R', 20, 20}));
    expectAsTheDriverBuilds(plan);
}

TEST(LimitedReads, ReadAGapInVainToSaveATelegram) {
    Rtu rtu = rtuWith({{'R', {0, 3, 7}}});
    rtu.limits.gap = 2;
    const host::RtuReadPlan plan = planReads(rtu);
    EXPECT_THAT(plan.analog, ElementsAre(ReadTelegram{'R', 0, 4}, ReadTelegram{'R', 7, 1}));
    EXPECT_THAT(plan.hidden, ElementsAre(host::ElementAddress{'R', 1}, host::ElementAddress{'R', 2}));
    EXPECT_THAT(allTelegrams(plan.second), IsEmpty());
}

TEST(LimitedReads, LeaveAnAbsentElementOut) {
    const Rtu rtu = rtuWith({{'R', run(0, 10)}});
    RefusedReads refused;
    refused.refused({'R', 4, 2}, {4, 5});
    refused.refused({'R', 4, 1}, {4});
    const host::RtuReadPlan plan = planReads(rtu, refused);
    EXPECT_THAT(plan.analog, ElementsAre(ReadTelegram{'R', 0, 4}, ReadTelegram{'R', 5, 5}));
    EXPECT_THAT(allTelegrams(plan.second), IsEmpty());
}

TEST(LimitedReads, NeedNoHiddenPointOnceSomethingWasRefused) {
    const Rtu rtu = rtuWith({{'R', run(0, 128)}});
    RefusedReads refused;
    refused.refused({'R', 127, 2}, {127});
    const host::RtuReadPlan plan = planReads(rtu, refused);
    EXPECT_THAT(plan.analog, ElementsAre(ReadTelegram{'R', 0, 127}));
    EXPECT_THAT(plan.second.analog, ElementsAre(ReadTelegram{'R', 127, 1}));
    EXPECT_THAT(plan.hidden, IsEmpty());
}

// 997 of 1,000 registers are good after one poll, and the next one has no telegram more than it needs.
TEST(LimitedReads, SettleInOnePollWhenThreeOfAThousandAreAbsent) {
    std::mt19937 random(1);
    Controller controller(random);
    controller.takeWords(127);
    const Rtu rtu = rtuWith({{'R', run(0, 1'000)}});
    for (const unsigned lost : {17U, 205U, 999U})
        controller.lose('R', lost);
    RefusedReads refused;
    EXPECT_LE(poll(rtu, controller, refused), 3U * 8U); // the telegram and the seven halves above the element
    EXPECT_EQ(refused.absent().size(), 3U);
    EXPECT_EQ(poll(rtu, controller, refused), 0U);
    const std::vector<ReadTelegram> telegrams = planned(planReads(rtu, refused));
    EXPECT_EQ(telegrams.size(), 10U); // 0..16 in one, 18..204 in two, 206..998 in seven
    expectEveryPointReadOnce(rtu, telegrams, refused);
}

// Whatever the controller can and has, once the refusals are over every point that is there is read once, by
// telegrams that the driver builds just so, within the limits.
TEST(LimitedReads, SuitEveryController) {
    std::mt19937 random(20'260'801);
    for (int round = 0; round < rounds; ++round) {
        Controller controller(random);
        std::map<char, std::set<unsigned>> elements;
        for (const char media : std::string("RTCIOF")) {
            for (unsigned runs = controller.number(0, 4); runs > 0; --runs)
                elements[media].merge(run(controller.number(0, 500), controller.number(1, 200)));
            for (unsigned lost = controller.number(0, 5); lost > 0; --lost)
                controller.lose(media, controller.number(0, 700));
        }
        Rtu rtu = rtuWith(elements);
        rtu.limits.gap = controller.number(0, 20);
        if (controller.number(0, 2) > 0) // otherwise the site file does not tell
            rtu.limits.readWords = std::min(127U, controller.mostOf('R'));
        rtu.limits.readBits = std::min(127U, controller.mostOf('I'));
        RefusedReads refused;
        expectAsTheDriverBuilds(planReads(rtu, refused));
        unsigned polls = 0;
        while (poll(rtu, controller, refused) > 0)
            ASSERT_LT(++polls, 10U) << "round " << round;

        const host::RtuReadPlan plan = planReads(rtu, refused);
        expectAsTheDriverBuilds(plan);
        const std::vector<ReadTelegram> telegrams = planned(plan);
        expectEveryPointReadOnce(rtu, telegrams, refused);
        for (const ReadTelegram& telegram : telegrams)
            ASSERT_LE(telegram.count, controller.mostOf(telegram.media)) << "round " << round;
        for (const host::ElementAddress& element : refused.absent())
            ASSERT_FALSE(controller.has(element)) << toText(element);
        if (HasFailure())
            FAIL() << "round " << round;
    }
}
