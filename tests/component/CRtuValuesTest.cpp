#include "RecordingCore.h"
#include "TaskChannel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

// RTU 3 of channel 9 with the status points 1 and 2 and the analog points 11 and 12.
class CRtuValues : public testing::Test {
protected:
    CRtuValues() {
        for (const unsigned number : {1U, 2U}) {
            StatusPoint point;
            point.number = number;
            rtu.GetPointList()->AddStatusPoint(point);
        }
        for (const unsigned number : {11U, 12U}) {
            AnalogPoint point;
            point.number = number;
            rtu.GetPointList()->AddAnalogPoint(point);
        }
        rtu.SetConnect(true, true);
    }

    static RemoteTerminalUnit configuration() {
        RemoteTerminalUnit info;
        info.id = 3;
        return info;
    }

    static CMidTime at(qint64 milliseconds) { return {QDateTime::fromMSecsSinceEpoch(milliseconds), 0}; }

    void putStatus(unsigned number, char value, bool first = true, qint64 time = 1000) {
        rtu.PutStatusPoint(false, number, value, 0, at(time), first);
    }
    void putAnalog(unsigned number, double value, qint64 time = 1000) {
        rtu.PutAnalogPoint(false, number, value, 0, at(time));
    }
    PointUpdate state(unsigned number) const {
        const auto states = rtu.GetPointStates();
        for (const PointUpdate& update : states)
            if (update.number == number)
                return update;
        ADD_FAILURE() << "no point " << number;
        return {};
    }

    RecordingCore core;
    TaskChannel channel{&core, 9};
    CRtu rtu{&core, &channel, configuration()};
};

} // namespace

TEST_F(CRtuValues, PointsAreNeverReadAtFirst) {
    const auto states = rtu.GetPointStates();
    ASSERT_EQ(states.size(), 4);
    for (const PointUpdate& update : states)
        EXPECT_EQ(update.quality, PointQuality::NeverRead);
    EXPECT_EQ(states[0].number, 1U);
    EXPECT_FALSE(states[0].analog);
    EXPECT_EQ(states[3].number, 12U);
    EXPECT_TRUE(states[3].analog);
}

TEST_F(CRtuValues, StagedValuesAreNotSeenUntilPublished) {
    putStatus(1, 1);
    EXPECT_TRUE(core.publications().isEmpty());
    EXPECT_EQ(state(1).quality, PointQuality::NeverRead);
}

TEST_F(CRtuValues, StagedValuesArePublishedTogether) {
    putStatus(1, 1, true, 1000);
    putStatus(2, 0, true, 1001);
    putAnalog(11, -2.5, 1002);
    rtu.PutDatapoints();
    const auto publications = core.publications();
    ASSERT_EQ(publications.size(), 1);
    EXPECT_EQ(publications[0].channelId, 9);
    EXPECT_EQ(publications[0].rtuId, 3);
    ASSERT_EQ(publications[0].updates.size(), 3);
    const PointUpdate& analog = publications[0].updates[2];
    EXPECT_TRUE(analog.analog);
    EXPECT_EQ(analog.number, 11U);
    EXPECT_EQ(analog.value, -2.5);
    EXPECT_EQ(analog.stamp.toMSecsSinceEpoch(), 1002);
    EXPECT_EQ(analog.quality, PointQuality::Good);
    EXPECT_EQ(state(1).value, 1.0);
    EXPECT_EQ(state(12).quality, PointQuality::NeverRead);
}

TEST_F(CRtuValues, NothingStagedTellsNobody) {
    rtu.PutDatapoints();
    putStatus(1, 1);
    rtu.PutDatapoints();
    rtu.PutDatapoints();
    EXPECT_EQ(core.publications().size(), 1);
}

TEST_F(CRtuValues, PointStagedTwiceIsPublishedOnceWithItsLastValue) {
    putAnalog(11, 1.0);
    putAnalog(11, 2.0);
    rtu.PutDatapoints();
    ASSERT_EQ(core.publications()[0].updates.size(), 1);
    EXPECT_EQ(core.point(9, 3, 11)->value, 2.0);
}

TEST_F(CRtuValues, UnchangedValueIsPublishedWithItsNewStamp) {
    putAnalog(11, 1.0, 1000);
    rtu.PutDatapoints();
    putAnalog(11, 1.0, 2000);
    rtu.PutDatapoints();
    EXPECT_EQ(core.point(9, 3, 11)->stamp.toMSecsSinceEpoch(), 2000);
}

TEST_F(CRtuValues, NumberWithoutAPointIsIgnored) {
    putStatus(99, 1);
    putAnalog(99, 1.0);
    rtu.PutStatusPoint(false, static_cast<StatusPoint*>(nullptr), 1, 0, at(1), true);
    rtu.PutAnalogPoint(false, static_cast<AnalogPoint*>(nullptr), 1.0, 0, at(1));
    rtu.PutDatapoints();
    EXPECT_TRUE(core.publications().isEmpty());
}

TEST_F(CRtuValues, ValueOfTheSecondAddressNeverReplacesThatOfTheFirst) {
    putStatus(1, 1, true);
    putStatus(1, 0, false);
    rtu.PutDatapoints();
    EXPECT_EQ(state(1).value, 1.0);
    putStatus(1, 0, false);
    rtu.PutDatapoints();
    EXPECT_EQ(state(1).value, 1.0);
    EXPECT_EQ(core.publications().size(), 1);
}

TEST_F(CRtuValues, ValueOfTheFirstAddressReplacesThatOfTheSecond) {
    putStatus(1, 0, false);
    putStatus(1, 1, true);
    rtu.PutDatapoints();
    EXPECT_EQ(state(1).value, 1.0);
}

TEST_F(CRtuValues, PointReadOnlyAtItsSecondAddressShowsThatValue) {
    putStatus(1, 1, false);
    rtu.PutDatapoints();
    EXPECT_EQ(state(1).value, 1.0);
    EXPECT_EQ(state(1).quality, PointQuality::Good);
}

TEST_F(CRtuValues, DisconnectTurnsReadValuesBadAndKeepsValueAndStamp) {
    putStatus(1, 1, true, 1234);
    putAnalog(11, 7.0);
    rtu.PutDatapoints();
    core.clear();
    rtu.SetConnect(false, true);
    const auto publications = core.publications();
    ASSERT_EQ(publications.size(), 1);
    EXPECT_EQ(publications[0].updates.size(), 2);
    const auto point = core.point(9, 3, 1);
    EXPECT_EQ(point->quality, PointQuality::Bad);
    EXPECT_EQ(point->value, 1.0);
    EXPECT_EQ(point->stamp.toMSecsSinceEpoch(), 1234);
    EXPECT_EQ(state(11).quality, PointQuality::Bad);
    EXPECT_EQ(state(2).quality, PointQuality::NeverRead);
}

TEST_F(CRtuValues, TimeOutTurnsReadValuesBad) {
    putAnalog(11, 7.0);
    rtu.PutDatapoints();
    rtu.PutRtuStatus(true, true, 0, 0, 1, 0);
    EXPECT_EQ(state(11).quality, PointQuality::Bad);
    EXPECT_EQ(core.point(9, 3, 11)->quality, PointQuality::Bad);
}

TEST_F(CRtuValues, ErrorTurnsReadValuesBad) {
    putAnalog(11, 7.0);
    rtu.PutDatapoints();
    rtu.PutRtuStatus(true, true, 0, 0, 0, 1);
    EXPECT_EQ(state(11).quality, PointQuality::Bad);
}

TEST_F(CRtuValues, AnswerLeavesValuesGood) {
    putAnalog(11, 7.0);
    rtu.PutDatapoints();
    rtu.PutRtuStatus(true, true, 0, 1, 0, 0);
    EXPECT_EQ(state(11).quality, PointQuality::Good);
}

TEST_F(CRtuValues, ValuesStagedBeforeAFailureAreNeverPublished) {
    putAnalog(11, 7.0);
    rtu.PutRtuStatus(true, true, 0, 0, 1, 0);
    rtu.PutDatapoints();
    EXPECT_TRUE(core.publications().isEmpty());
    EXPECT_EQ(state(11).quality, PointQuality::NeverRead);
}

TEST_F(CRtuValues, DisconnectDropsStagedValues) {
    putAnalog(11, 7.0);
    rtu.SetConnect(false, true);
    rtu.PutDatapoints();
    EXPECT_TRUE(core.publications().isEmpty());
}

TEST_F(CRtuValues, RepeatedFailuresTellOfBadValuesOnce) {
    putAnalog(11, 7.0);
    rtu.PutDatapoints();
    core.clear();
    for (int failure = 0; failure < 5; ++failure) {
        rtu.SetConnect(false, true);
        rtu.PutRtuStatus(false, false, 0, 0, 1, 0);
    }
    EXPECT_EQ(core.publications().size(), 1);
}

TEST_F(CRtuValues, ConnectionAloneMakesNothingGood) {
    putAnalog(11, 7.0);
    rtu.PutDatapoints();
    rtu.SetConnect(false, true);
    rtu.SetConnect(true, true);
    rtu.PutDatapoints();
    EXPECT_EQ(state(11).quality, PointQuality::Bad);
    EXPECT_EQ(core.point(9, 3, 11)->quality, PointQuality::Bad);
}

TEST_F(CRtuValues, NewValueMakesItsOwnPointGoodAgain) {
    putAnalog(11, 7.0);
    putAnalog(12, 8.0);
    rtu.PutDatapoints();
    rtu.SetConnect(false, true);
    putAnalog(12, 9.0);
    rtu.PutDatapoints();
    EXPECT_EQ(state(11).quality, PointQuality::Bad);
    EXPECT_EQ(state(12).quality, PointQuality::Good);
    EXPECT_EQ(state(12).value, 9.0);
}

TEST_F(CRtuValues, PointsWithDistantNumbersKeepTheirValuesApart) {
    for (const unsigned number : {4'294'967'295U, 300U, 2'147'483'648U}) {
        AnalogPoint point;
        point.number = number;
        rtu.GetPointList()->AddAnalogPoint(point);
        putAnalog(number, number);
    }
    putAnalog(300, -1);
    rtu.PutDatapoints();
    EXPECT_EQ(state(4'294'967'295U).value, 4'294'967'295.0);
    EXPECT_EQ(state(2'147'483'648U).value, 2'147'483'648.0);
    EXPECT_EQ(state(300).value, -1);
    EXPECT_EQ(state(11).quality, PointQuality::NeverRead);
}

TEST_F(CRtuValues, FiveThousandPointsArePublishedInOneCall) {
    for (unsigned number = 100; number < 5100; ++number) {
        AnalogPoint point;
        point.number = number;
        rtu.GetPointList()->AddAnalogPoint(point);
    }
    for (unsigned number = 100; number < 5100; ++number)
        putAnalog(number, number);
    rtu.PutDatapoints();
    ASSERT_EQ(core.publications().size(), 1);
    const auto updates = core.publications()[0].updates;
    ASSERT_EQ(updates.size(), 5000);
    for (int index = 0; index < updates.size(); ++index)
        ASSERT_EQ(updates[index].value, 100.0 + index);
}

TEST_F(CRtuValues, PollsOfChangingSizeArePublishedWhole) {
    for (unsigned number = 100; number < 1100; ++number) {
        AnalogPoint point;
        point.number = number;
        rtu.GetPointList()->AddAnalogPoint(point);
    }
    for (const unsigned last : {1000U, 100U, 500U, 1099U}) {
        core.clear();
        for (unsigned number = 100; number <= last; ++number)
            putAnalog(number, number + last);
        rtu.PutDatapoints();
        const auto updates = core.publications()[0].updates;
        ASSERT_EQ(updates.size(), static_cast<int>(last - 99));
        EXPECT_EQ(updates.first().number, 100U);
        EXPECT_EQ(updates.first().value, 100 + last);
        EXPECT_EQ(updates.last().number, last);
        EXPECT_EQ(updates.last().value, 2.0 * last);
        EXPECT_EQ(state(last).value, 2.0 * last);
    }
}

TEST_F(CRtuValues, WhatTheHostKeepsOfAPublicationStaysAsItWas) {
    putAnalog(11, 1.0);
    rtu.PutDatapoints();
    putAnalog(12, 2.0);
    rtu.PutDatapoints();
    const auto publications = core.publications();
    ASSERT_EQ(publications.size(), 2);
    ASSERT_EQ(publications[0].updates.size(), 1);
    EXPECT_EQ(publications[0].updates[0].number, 11U);
    EXPECT_EQ(publications[0].updates[0].value, 1.0);
}

TEST_F(CRtuValues, PointStagedAgainAfterAFailureIsPublishedOnceBesideOthers) {
    putAnalog(11, 1.0);
    putAnalog(12, 2.0);
    rtu.PutRtuStatus(true, true, 0, 0, 1, 0);
    putAnalog(12, 3.0);
    putAnalog(12, 4.0);
    putStatus(1, 1);
    rtu.PutDatapoints();
    const auto updates = core.publications()[0].updates;
    ASSERT_EQ(updates.size(), 2);
    EXPECT_EQ(updates[0].number, 12U);
    EXPECT_EQ(updates[0].value, 4.0);
    EXPECT_EQ(updates[1].number, 1U);
    EXPECT_EQ(state(11).quality, PointQuality::NeverRead);
}

TEST_F(CRtuValues, StatusAndAnalogPointOfOneNumberAreTwo) {
    AnalogPoint point;
    point.number = 1;
    rtu.GetPointList()->AddAnalogPoint(point);
    putStatus(1, 1);
    putAnalog(1, 2.5);
    rtu.PutDatapoints();
    const auto states = rtu.GetPointStates();
    EXPECT_EQ(states[0].value, 1.0);
    EXPECT_FALSE(states[0].analog);
    EXPECT_EQ(states[2].value, 2.5);
    EXPECT_TRUE(states[2].analog);
}

TEST_F(CRtuValues, StatesCanBeReadOnOtherThreadsWhileValuesArrive) {
    std::atomic<bool> ended{false};
    std::thread reader([&] {
        while (!ended) {
            // Both points are published together: nobody sees the one without the other.
            const auto states = rtu.GetPointStates();
            EXPECT_EQ(states[2].value, states[3].value);
            rtu.GetRtuStatus();
        }
    });
    for (int value = 1; value <= 2000; ++value) {
        putAnalog(11, value);
        putAnalog(12, value);
        rtu.PutDatapoints();
        rtu.PutRtuStatus(true, true, 0, 1, 0, 0);
    }
    ended = true;
    reader.join();
    EXPECT_EQ(state(11).value, 2000.0);
}
