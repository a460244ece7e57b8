#include "SBusRtu.h"
#include "VirtualSlots.h"

#include <HalvexDriverComponent/CReply.h>
#include <HalvexDriverLink/CLink.h>

#include <gtest/gtest.h>

namespace {

using PutStatus = void (CRtu::*)(bool, StatusPoint*, char, unsigned, const CMidTime&, bool);
using PutAnalog = void (CRtu::*)(bool, AnalogPoint*, double, unsigned, const CMidTime&);

// QObject's own operations, some of which only a derived class may name.
struct ObjectOperations : QObject {
    static std::size_t lastSlot() { return slotOf(&ObjectOperations::disconnectNotify); }
};

} // namespace

TEST(CRtuSlots, FollowThoseOfTheObject) {
    EXPECT_EQ(slotOf(&CRtu::createScheduler), ObjectOperations::lastSlot() + 1);
}

TEST(CRtuSlots, StandInTheOrderOfTheInterface) {
    EXPECT_EQ(slotOf(&CRtu::createScheduler), 12u);
    EXPECT_EQ(slotOf(&CRtu::ReloadStatusPoint), 13u);
    EXPECT_EQ(slotOf(&CRtu::ReloadAnalogPoint), 14u);
    EXPECT_EQ(slotOf(&CRtu::ReloadBinaryPoint), 15u);
    EXPECT_EQ(slotOf(&CRtu::ReloadScan), 16u);
    EXPECT_EQ(slotOf(&CRtu::InitRtu), 17u);
    EXPECT_EQ(slotOf(&CRtu::StopRtu), 18u);
    EXPECT_EQ(slotOf(&CRtu::updateRequestResult), 19u);
    EXPECT_EQ(slotOf(static_cast<PutStatus>(&CRtu::PutStatusPoint)), 20u);
    EXPECT_EQ(slotOf(static_cast<PutAnalog>(&CRtu::PutAnalogPoint)), 21u);
    EXPECT_EQ(slotOf(&CRtu::RequestPoll), 22u);
    EXPECT_EQ(slotOf(&CRtu::RequestHistory), 23u);
    EXPECT_EQ(slotOf(&CRtu::manualWrite), 24u);
    EXPECT_EQ(slotOf(&CRtu::statusWrite), 25u);
    EXPECT_EQ(slotOf(&CRtu::analogWrite), 26u);
    EXPECT_EQ(slotOf(&CRtu::analogWriteList), 27u);
    EXPECT_EQ(slotOf(&CRtu::rawStatusWrite), 28u);
    EXPECT_EQ(slotOf(&CRtu::genericCommand), 29u);
    EXPECT_EQ(slotOf(&CRtu::timeSync), 30u);
    EXPECT_EQ(slotOf(&CRtu::readParameter), 31u);
    EXPECT_EQ(slotOf(&CRtu::writeParameter), 32u);
    EXPECT_EQ(slotOf(&CRtu::resetDevice), 33u);
}

TEST(SBusRtuSlots, OverrideTheBasesInPlaceAndComeAfterThemOtherwise) {
    EXPECT_EQ(slotOf(&SBusRtu::InitRtu), 17u);
    EXPECT_EQ(slotOf(&SBusRtu::StopRtu), 18u);
    EXPECT_EQ(slotOf(&SBusRtu::RequestPoll), 22u);
    EXPECT_EQ(slotOf(&SBusRtu::RequestHistory), 23u);
    EXPECT_EQ(slotOf(&SBusRtu::readParameter), 31u);
    EXPECT_EQ(slotOf(&SBusRtu::writeParameter), 32u);
    EXPECT_EQ(slotOf(&SBusRtu::resetDevice), 33u);
    EXPECT_GT(slotOf(&SBusRtu::publishStatusValues), 33u);
    EXPECT_GT(slotOf(&SBusRtu::publishAnalogValues), 33u);
}

TEST(CLinkSlots, BeginWithResetAndHaveCloseRightBehindOpen) {
    EXPECT_LT(slotOf(&CLink::reset), slotOf(&CLink::open));
    EXPECT_EQ(slotOf(&CLink::close), slotOf(&CLink::open) + 1);
}

TEST(CLinkSlots, StandInTheOrderOfTheInterface) {
    const std::size_t first = slotOf(&CLink::reset);
    EXPECT_EQ(first, 2u) << "right behind the destructor";
    EXPECT_EQ(slotOf(&CLink::open), first + 1);
    EXPECT_EQ(slotOf(&CLink::close), first + 2);
    EXPECT_EQ(slotOf(&CLink::send), first + 3);
    EXPECT_EQ(slotOf(&CLink::receive), first + 4);
    EXPECT_EQ(slotOf(&CLink::kind), first + 5);
}
