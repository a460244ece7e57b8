#include "VirtualSlots.h"

#include <SBusEthernetDriver.h>
#include <SBusProtocolBase.h>
#include <SBusSerialDriver.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

// Where QObject's own operations end.
struct ObjectSlots : QObject {
    static std::size_t last() { return slotOf(&ObjectSlots::disconnectNotify); }
};

} // namespace

TEST(ProtocolSlots, TheFiveOperationsFollowThoseOfQObjectInOrder) {
    const std::size_t before = ObjectSlots::last();
    EXPECT_EQ(slotOf(&SBusProtocolBase::checkResponse), before + 1);
    EXPECT_EQ(slotOf(&SBusProtocolBase::buildReadFrame), before + 2);
    EXPECT_EQ(slotOf(&SBusProtocolBase::buildWriteFrame), before + 3);
    EXPECT_EQ(slotOf(&SBusProtocolBase::reservedHook), before + 4);
    EXPECT_EQ(slotOf(&SBusProtocolBase::transceive), before + 5);
}

TEST(ProtocolSlots, NothingElseOfTheEngineIsVirtual) {
    EXPECT_TRUE(isVirtual(&SBusProtocolBase::transceive));
    EXPECT_FALSE(isVirtual(&SBusProtocolBase::submitRequest));
    EXPECT_FALSE(isVirtual(&SBusProtocolBase::queueRequest));
    EXPECT_FALSE(isVirtual(&SBusProtocolBase::setLink));
    EXPECT_FALSE(isVirtual(&SBusProtocolBase::processNextRequest));
}

TEST(ProtocolSlots, TheBaseCannotBeMadeAlone) {
    EXPECT_TRUE(std::is_abstract_v<SBusProtocolBase>);
    EXPECT_FALSE(std::is_abstract_v<SBusSerialDriver>);
    EXPECT_FALSE(std::is_abstract_v<SBusEthernetDriver>);
}
