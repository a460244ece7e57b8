#include "ServiceByLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Result = Halvex::DriverErrorResult;

// Clients that want to hear of changes.

namespace {

class ServiceWatch : public ServiceByLines {};

} // namespace

TEST_F(ServiceWatch, TellsAWatcherTheCurrentValuesFirst) {
    publish(5, 1, 1, 1);
    service.tellChanges();
    EXPECT_EQ(askOne(R"({"id":1,"do":"watch","rtus":["hill"]})"), R"({"id":1,"ok":true,"points":1})");
    EXPECT_TRUE(service.isWatching(1));
    sent.clear();
    EXPECT_FALSE(service.tellCurrentValues(1, 10));
    EXPECT_THAT(
        sent[1],
        ElementsAre(R"({"change":{"time":"2001-09-09T01:46:40.000Z","channel":"reservoirs","rtu":"hill",)"
                    R"("id":1,"name":"RUN","address":"O1","value":1,"quality":"good"}})"));
}

TEST_F(ServiceWatch, TellsCurrentValuesInPortions) {
    EXPECT_THAT(askOne(R"({"do":"watch"})"), HasSubstr(R"("points":7)"));
    sent.clear();
    EXPECT_TRUE(service.tellCurrentValues(1, 5));
    EXPECT_THAT(sent[1], SizeIs(5));
    EXPECT_FALSE(service.tellCurrentValues(1, 5));
    EXPECT_THAT(sent[1], SizeIs(7));
}

TEST_F(ServiceWatch, TellsEveryWatcherEveryChange) {
    ask(R"({"do":"watch"})", 1);
    ask(R"({"do":"watch","rtus":["hill"]})", 2);
    service.tellCurrentValues(1, 100);
    service.tellCurrentValues(2, 100);
    publish(4, 7, 3, 5);
    publish(4, 7, 3, 6);
    publish(5, 1, 1, 1, PointQuality::Refused);
    const auto told = changesTold(1);
    EXPECT_THAT(told, ElementsAre(HasSubstr(R"("value":5,"quality":"good")"), HasSubstr(R"("value":6)"),
                                  HasSubstr(R"("value":null,"quality":"refused")")));
    EXPECT_THAT(sent[2], ElementsAre(HasSubstr(R"("rtu":"hill")")));
}

TEST_F(ServiceWatch, TellsAChangeBeforeItsPointWasToldOnlyAsCurrentValue) {
    ask(R"({"do":"watch"})");
    publish(5, 3, 2, 1);
    EXPECT_THAT(changesTold(1), IsEmpty());
    service.tellCurrentValues(1, 100);
    EXPECT_THAT(sent[1], SizeIs(7));
    EXPECT_THAT(sent[1].back(), HasSubstr(R"("name":"RUN","address":"O3","value":1,"quality":"good")"));
}

// Also when they were not yet passed on when the current values were told.
TEST_F(ServiceWatch, TellsJustTheChangesThatTheCurrentValuesDoNotHold) {
    ask(R"({"do":"watch"})");
    EXPECT_TRUE(service.tellCurrentValues(1, 3)); // of the first pump-house
    publish(4, 7, 3, 5);
    publish(5, 3, 2, 1);
    EXPECT_FALSE(service.tellCurrentValues(1, 100));
    publish(5, 3, 2, 0);
    EXPECT_THAT(changesTold(1), ElementsAre(AllOf(HasSubstr(R"("name":"LEVEL")"), HasSubstr(R"("value":5)")),
                                            AllOf(HasSubstr(R"("name":"RUN")"), HasSubstr(R"("value":0)"))));
    publish(5, 3, 2, 1);
    EXPECT_THAT(changesTold(1), ElementsAre(HasSubstr(R"("name":"RUN")")));
}

TEST_F(ServiceWatch, TellsCurrentValuesOnceMoreWhenChangesWereMissed) {
    ask(R"({"do":"watch","rtus":["waterworks/pump-house"]})");
    service.tellCurrentValues(1, 100);
    QVector<PointUpdate> burst;
    for (std::size_t value = 0; value <= ValueStore::mostKeptChanges; ++value)
        burst << PointUpdate{true, 2, static_cast<double>(value), {}, PointQuality::Good};
    fake.store.publishPoints(4, 7, burst);
    EXPECT_THAT(changesTold(1), IsEmpty());
    EXPECT_FALSE(service.tellCurrentValues(1, 100));
    EXPECT_THAT(sent[1], SizeIs(3));
    EXPECT_THAT(sent[1].back(), HasSubstr(R"("name":"LEVEL","address":"R101","value":262144,)"));
    publish(4, 7, 3, 7);
    EXPECT_THAT(changesTold(1), ElementsAre(HasSubstr(R"("value":7)")));
}

TEST_F(ServiceWatch, TellsNobodyMoreWhoIsGone) {
    ask(R"({"do":"watch"})");
    service.tellCurrentValues(1, 100);
    service.forget(1);
    publish(5, 1, 1, 1);
    EXPECT_THAT(changesTold(1), IsEmpty());
}

TEST_F(ServiceWatch, TakesOneWatchOfAClientAndNoMoreThanItsLimitOfAll) {
    ask(R"({"do":"watch"})");
    EXPECT_THAT(askOne(R"({"do":"watch"})"), HasSubstr(R"("code":"busy")"));
    for (ClientId client = 2; client <= ControlService::mostWatches; ++client)
        EXPECT_THAT(askOne(R"({"do":"watch"})", client), HasSubstr(R"("ok":true)"));
    EXPECT_THAT(askOne(R"({"do":"watch"})", 1'000), HasSubstr(R"("code":"busy")"));
    service.forget(2);
    EXPECT_THAT(askOne(R"({"do":"watch"})", 1'000), HasSubstr(R"("ok":true)"));
}
