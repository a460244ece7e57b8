#include "Hex.h"
#include "Printers.h"

#include <SBusPendingTable.h>

#include <gtest/gtest.h>

namespace {

// The table alone. What the engine makes of it stands in HandingOverTest.
class PendingTableTest : public testing::Test {
protected:
    static SBusRequest request(const QString& name, quint32 address = 0) {
        SBusRequest made;
        made.name = name;
        made.items = {{14, 0, address, hex("00 00 00 01")}};
        return made;
    }

    // Name and address of what is taken out, "poll 0", until nothing is left.
    QStringList takeAll() {
        QStringList taken;
        while (const std::optional<SBusRequest> first = table.takeFirst())
            taken << QStringLiteral("%1 %2").arg(first->name).arg(first->items.at(0).address);
        return taken;
    }

    SBusPendingTable table;
};

} // namespace

TEST_F(PendingTableTest, HasNothingAtFirst) {
    EXPECT_FALSE(table.takeFirst());
    EXPECT_FALSE(table.contains(request("poll")));
    EXPECT_EQ(table.remove(request("poll")), 0);
}

TEST_F(PendingTableTest, WhatIsPutLastIsTakenInTheSameOrder) {
    table.putLast(request("first"));
    table.putLast(request("second"));
    EXPECT_EQ(takeAll(), (QStringList{"first 0", "second 0"}));
}

TEST_F(PendingTableTest, WhatIsPutFirstIsTakenFirst) {
    table.putLast(request("poll"));
    table.putFirst(request("command"));
    table.putFirst(request("newest"));
    EXPECT_EQ(takeAll(), (QStringList{"newest 0", "command 0", "poll 0"}));
}

TEST_F(PendingTableTest, WhatIsPutFirstStandsInPlaceOfEveryEqualRequest) {
    table.putLast(request("output", 1));
    table.putLast(request("between"));
    table.putLast(request("output", 1));
    table.putFirst(request("output", 2));
    EXPECT_EQ(takeAll(), (QStringList{"output 2", "between 0"}));
}

TEST_F(PendingTableTest, RemoveTakesEveryEqualRequestAndCountsThem) {
    table.putLast(request("poll", 1));
    table.putLast(request("other"));
    table.putLast(request("poll", 2));
    EXPECT_TRUE(table.contains(request("poll", 3)));
    EXPECT_EQ(table.remove(request("poll", 3)), 2);
    EXPECT_FALSE(table.contains(request("poll")));
    EXPECT_EQ(table.remove(request("poll")), 0);
    EXPECT_EQ(takeAll(), QStringList{"other 0"});
}

TEST_F(PendingTableTest, HoldsCopies) {
    SBusRequest poll = request("poll", 1);
    table.putLast(poll);
    table.putFirst(request("command"));
    poll.name = "renamed";
    poll.items[0].address = 2;
    EXPECT_EQ(takeAll(), (QStringList{"command 0", "poll 1"}));
}
