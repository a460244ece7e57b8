#include "SBusChennel.h"
#include "VirtualSlots.h"

#include <gtest/gtest.h>

namespace {

// run() may be named by derived classes alone.
struct ThreadOperations : QThread {
    static std::size_t runSlot() { return slotOf(&ThreadOperations::run); }
};

} // namespace

TEST(CChannelSlots, StandInTheOrderOfThreadAskedThreadAndChannel) {
    const std::size_t run = ThreadOperations::runSlot();
    EXPECT_EQ(run, 12u) << "right behind the object's operations";
    EXPECT_EQ(slotOf(&CThread::SetShutdown), run + 1);
    EXPECT_EQ(slotOf(&CChannel::InitChannel), run + 2);
    EXPECT_EQ(slotOf(&CChannel::CloseChannel), run + 3);
    EXPECT_EQ(slotOf(&CChannel::CreateRtu), run + 4);
}

TEST(SBusChennelSlots, OverrideTheBasesInPlace) {
    EXPECT_EQ(slotOf(&SBusChennel::run), ThreadOperations::runSlot());
    EXPECT_EQ(slotOf(&SBusChennel::InitChannel), slotOf(&CChannel::InitChannel));
    EXPECT_EQ(slotOf(&SBusChennel::CloseChannel), slotOf(&CChannel::CloseChannel));
    EXPECT_EQ(slotOf(&SBusChennel::CreateRtu), slotOf(&CChannel::CreateRtu));
}
