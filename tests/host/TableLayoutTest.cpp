#include "services/console/TableLayout.h"
#include "SmallSite.h"

#include <QDateTime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::fitText;
using host::TableContents;
using host::TablePage;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr qint64 now = 1'700'000'000'000;

class TableLayout : public testing::Test {
protected:
    struct State {
        double value;
        qint64 timeMs; // when it was read
        PointQuality quality;
    };

    void usePoints(unsigned count) {
        std::vector<host::Point>& points = site.channels[0].rtus[0].points;
        const host::Point one = points[0];
        points.assign(count, one);
    }

    TablePage layOut(unsigned columns, unsigned rows, std::size_t page = 0) {
        store = std::make_unique<host::ValueStore>(site);
        contents.title = "sbus-host";
        contents.nowMs = now;
        contents.values = store.get();
        contents.longestName = host::longestNameOf(store->points());
        for (unsigned number = 0; number < states.size(); ++number)
            publish(number, states[number]);
        contents.figures.channels = {{&site.channels[0], channelStatus}};
        contents.figures.rtus = {{&site.channels[0], &site.channels[0].rtus[0], status}};
        return layOutTable(contents, {columns, rows}, page);
    }

    void publish(unsigned number, const State& state) {
        const auto stamp = CMidTime(QDateTime::fromMSecsSinceEpoch(state.timeMs, Qt::UTC), 0);
        store->publishPoints(4, 7, {PointUpdate{false, number, state.value, stamp, PointQuality::Good}});
        if (state.quality != PointQuality::Good)
            store->publishPoints(4, 7, {PointUpdate{false, number, state.value, stamp, state.quality}});
    }

    host::Site site = smallSite();
    std::unique_ptr<host::ValueStore> store;
    std::vector<State> states; // of the first points; the others were never read
    TableContents contents;
    RtuStatus status;
    ChannelStatus channelStatus;
};

std::size_t widest(const TablePage& page) {
    std::size_t result = 0;
    for (const host::TableLine& line : page.lines)
        result = std::max(result, line.text.size());
    return result;
}

} // namespace

TEST_F(TableLayout, ShowsHeadingsValuesQualitiesAndAges) {
    status.connected = true;
    status.answers = 12;
    states = {{1, now - 400, PointQuality::Good}, {1.5, now - 61'000, PointQuality::Bad}};
    const TablePage page = layOut(100, 24);
    ASSERT_EQ(page.lines.size(), 6U);
    EXPECT_EQ(page.lines[1].text, "waterworks  SBus-Ethernet  udp://127.0.0.1:9");
    EXPECT_THAT(page.lines[2].text, StartsWith(" pump-house  station 5  connected  12 answers"));
    EXPECT_EQ(page.lines[3].text, "  RUN       O32                  1  good           0.4 s");
    EXPECT_EQ(page.lines[4].text, "  FLOW      R100               1.5  bad          1 m 1 s");
    EXPECT_EQ(page.lines[4].style, host::TableLine::Style::Bad);
    EXPECT_THAT(page.lines[5].text, StartsWith("  LEVEL     R101                 -  never read"));
}

TEST_F(TableLayout, TellsAnRtuThatIsNotConnected) {
    EXPECT_THAT(layOut(100, 24).lines[2].text, HasSubstr("NOT CONNECTED"));
}

TEST_F(TableLayout, ShowsTheEndInUseAndWhatWentWrongOnTheLine) {
    site.channels[0].secondary = host::UdpEnd{"127.0.0.2", 9};
    channelStatus.whereLink = 1;
    channelStatus.channelErrors = 3;
    EXPECT_EQ(layOut(100, 24).lines[1].text,
              "waterworks  SBus-Ethernet  udp://127.0.0.2:9  secondary  3 channel errors");
}

TEST_F(TableLayout, FitsEveryTerminal) {
    usePoints(200);
    contents.messages = {"one", "two", "three", "four", "five"};
    for (const unsigned columns : {1U, 20U, 40U, 80U, 200U})
        for (const unsigned rows : {4U, 5U, 24U, 60U}) {
            const TablePage page = layOut(columns, rows);
            EXPECT_LE(page.lines.size(), rows) << columns << " by " << rows;
            EXPECT_LE(widest(page), columns) << columns << " by " << rows;
        }
}

TEST_F(TableLayout, ShowsEveryPointOnOneOfItsPagesUnderItsHeadings) {
    usePoints(50);
    const std::size_t pages = layOut(80, 24).pageCount;
    ASSERT_EQ(pages, 3U); // 24 lines less the title and two headings leave 21 points a page
    std::size_t pointLines = 0;
    for (std::size_t page = 0; page < pages; ++page) {
        const TablePage laidOut = layOut(80, 24, page);
        EXPECT_THAT(laidOut.lines[1].text, StartsWith("waterworks"));
        EXPECT_THAT(laidOut.lines[2].text, StartsWith(" pump-house"));
        pointLines += laidOut.lines.size() - 3;
    }
    EXPECT_EQ(pointLines, 50U);
}

TEST_F(TableLayout, ShowsTheHeadingsOfAnRtuThatBeginsInTheMiddleOfAPage) {
    usePoints(10);
    host::Rtu second = site.channels[0].rtus[0];
    second.name = "tank";
    site.channels[0].rtus.push_back(second);
    const TablePage first = layOut(80, 24);
    EXPECT_EQ(first.pageCount, 1U); // the title, the channel, and two RTUs with ten points each fill it
    EXPECT_EQ(first.lines.size(), 24U);
    EXPECT_THAT(first.lines[13].text, StartsWith(" tank"));
    // One line less, and the last point goes to a page of its own.
    EXPECT_EQ(layOut(80, 23).pageCount, 2U);
    const TablePage last = layOut(80, 23, 1);
    ASSERT_EQ(last.lines.size(), 4U);
    EXPECT_THAT(last.lines[0].text, HasSubstr("page 2 of 2"));
    EXPECT_THAT(last.lines[2].text, StartsWith(" tank"));
}

TEST_F(TableLayout, ShowsTheNewestMessagesLast) {
    contents.messages = {"old", "new"};
    const TablePage page = layOut(80, 24);
    EXPECT_EQ(page.lines.back().text, "new");
    EXPECT_EQ(page.lines[page.lines.size() - 2].text, "old");
}

TEST_F(TableLayout, CountsCharactersAndHidesControls) {
    EXPECT_EQ(fitText("Br\xC3\xBC"
                      "cke",
                      8),
              "Br\xC3\xBC"
              "cke  ");
    EXPECT_EQ(fitText("Br\xC3\xBC"
                      "cke",
                      3),
              "Br\xC3\xBC");
    EXPECT_EQ(fitText("7", 3, true), "  7");
    EXPECT_EQ(fitText("a\x1b[2Jb", 6), "a?[2Jb");
}
