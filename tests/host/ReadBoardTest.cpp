#include "oneshot/ReadBoard.h"

#include "SmallSite.h"

#include <gtest/gtest.h>

namespace {

// Of a site whose only RTU reads three elements; an id in it is the place of its element.
class Board : public testing::Test {
protected:
    Board() {
        for (unsigned place = 0; place < site.channels[0].rtus[0].points.size(); ++place)
            site.channels[0].rtus[0].points[place].id = place;
        site.channels[0].rtus[0].id = 1;
    }

    void requestEnds() {
        host::RequestEnd end;
        end.channel = &site.channels[0];
        end.rtu = &site.channels[0].rtus[0];
        end.kind = host::RequestEnd::Kind::NoAnswer;
        board.requestEnded(end);
    }

    void publish(unsigned number, double value, PointQuality quality = PointQuality::Good) {
        PointUpdate update;
        update.number = number;
        update.value = value;
        update.quality = quality;
        board.publishPoints(4, 1, {update});
    }

    host::Site site = smallSite();
    host::ReadBoard board{site, 3};
};

} // namespace

TEST_F(Board, KeepsAValueThatIsReadUntilTheNextReading) {
    publish(1, 12);
    publish(1, 0, PointQuality::Bad);
    publish(7, 99); // a hidden point
    EXPECT_TRUE(board.isRead(1));
    EXPECT_EQ(board.readCount(), 1U);
    EXPECT_EQ(board.readings()[1].value, 12);
    board.begin();
    EXPECT_FALSE(board.isRead(1));
    EXPECT_EQ(board.readCount(), 0U);
}

TEST_F(Board, GivesEachEndOfARequestOnce) {
    requestEnds();
    requestEnds();
    EXPECT_EQ(board.takeEnds().size(), 2U);
    EXPECT_TRUE(board.takeEnds().empty());
}

// Hours may pass between two readings, while the driver asks a silent controller again and again.
TEST_F(Board, KeepsNoEndsBetweenTwoReadings) {
    requestEnds();
    board.finish();
    requestEnds();
    EXPECT_TRUE(board.takeEnds().empty());
    board.begin();
    requestEnds();
    EXPECT_EQ(board.takeEnds().size(), 1U);
}
