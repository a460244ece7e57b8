#include "services/console/TableView.h"
#include "SmallSite.h"

#include <QDateTime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::TableKey;
using host::TableLine;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr qint64 now = 1'700'000'000'000;

// The table of a site of one line, on a terminal of 100 columns and 24 rows unless a test says otherwise. The
// title, the last row and two headings leave 20 rows for points.
class ShownTable : public testing::Test {
protected:
    void usePoints(unsigned count) {
        std::vector<host::Point>& points = site.channels[0].rtus[0].points;
        const host::Point one = points[2];
        points.assign(count, one);
        for (unsigned i = 0; i < count; ++i) {
            points[i].id = i;
            points[i].name = "P" + std::to_string(i);
            points[i].address = {'R', static_cast<decltype(one.address.number)>(i)};
        }
    }
    void addRtu(const std::string& name, unsigned points) {
        host::Rtu rtu = site.channels[0].rtus[0];
        rtu.id = static_cast<int>(site.channels[0].rtus.size()) + 8;
        rtu.name = name;
        rtu.points.resize(points);
        site.channels[0].rtus.push_back(rtu);
    }
    host::TableView& view() {
        if (!table) {
            store = std::make_unique<host::ValueStore>(site);
            table = std::make_unique<host::TableView>("sbus-host", *store);
        }
        return *table;
    }
    void read(unsigned number, double value, qint64 age, PointQuality quality = PointQuality::Good) {
        view();
        const auto stamp = CMidTime(QDateTime::fromMSecsSinceEpoch(now - age, Qt::UTC), 0);
        store->publishPoints(4, 7, {PointUpdate{false, number, value, stamp, PointQuality::Good}});
        if (quality != PointQuality::Good)
            store->publishPoints(4, 7, {PointUpdate{false, number, value, stamp, quality}});
    }
    void press(TableKey::Kind kind) { view().handle({kind, {}}); }
    void type(const std::string& text) {
        for (const char character : text)
            view().handle({TableKey::Kind::Character, std::string(1, character)});
    }
    // What has more characters than the terminal columns, or more rows, is a failure.
    std::vector<TableLine> rows(unsigned columns = 100, unsigned count = 24, qint64 time = now) {
        host::SiteFigures figures;
        figures.channels = {{&site.channels[0], channelStatus}};
        for (const host::Rtu& rtu : site.channels[0].rtus)
            figures.rtus.push_back({&site.channels[0], &rtu, status});
        const std::vector<TableLine> lines = view().rows({columns, count}, time, figures);
        EXPECT_EQ(lines.size(), count);
        for (const TableLine& line : lines)
            EXPECT_LE(line.text.size(), columns) << line.text;
        return lines;
    }
    std::string selected() {
        for (const TableLine& line : rows())
            if (line.isSelected)
                return line.text.substr(2, line.text.find(' ', 2) - 2);
        return "none";
    }
    std::string row(std::size_t number) { return rows().at(number).text; }

    host::Site site = smallSite();
    std::unique_ptr<host::ValueStore> store;
    std::unique_ptr<host::TableView> table;
    RtuStatus status;
    ChannelStatus channelStatus;
};

} // namespace

TEST_F(ShownTable, ShowsHeadingsValuesQualitiesAndAges) {
    status.connected = true;
    status.answers = 12;
    status.timeOuts = 1;
    read(0, 1, 400);
    read(1, 1.5, 61'000, PointQuality::Bad);
    EXPECT_EQ(row(1), "waterworks  SBus-Ethernet  udp://127.0.0.1:9");
    EXPECT_THAT(row(2), StartsWith(" pump-house  station 5  connected  12 answers  1 time-out  0 errors"));
    EXPECT_EQ(row(3), "  RUN       O32                  1  good           0.4 s");
    EXPECT_EQ(row(4), "  FLOW      R100               1.5  bad          1 m 1 s");
    EXPECT_EQ(rows()[4].style, TableLine::Style::Bad);
    EXPECT_THAT(row(5), StartsWith("  LEVEL     R101                 -  never read"));
}

TEST_F(ShownTable, TellsAnRtuThatIsNotConnected) {
    EXPECT_THAT(row(2), HasSubstr("NOT CONNECTED"));
}

TEST_F(ShownTable, ShowsTheEndInUseAndWhatWentWrongOnTheLine) {
    site.channels[0].secondary = host::UdpEnd{"127.0.0.2", 9};
    channelStatus.whereLink = 1;
    channelStatus.channelErrors = 3;
    EXPECT_EQ(row(1), "waterworks  SBus-Ethernet  udp://127.0.0.2:9  secondary  3 channel errors");
}

TEST_F(ShownTable, FitsEveryTerminal) {
    usePoints(200);
    for (const char* const message : {"one", "two two two two two two two two two two", "three"})
        view().tell({now, message});
    for (const char* const keys : {"", "l", "m", "?"}) {
        type(keys);
        for (const unsigned columns : {1U, 20U, 40U, 80U, 200U})
            for (const unsigned count : {4U, 5U, 24U, 60U})
                rows(columns, count);
        press(TableKey::Kind::Escape);
    }
}

TEST_F(ShownTable, TurnsPagesThatShowEveryPointUnderItsHeadingsUntilAKeyComes) {
    usePoints(50);
    std::vector<std::string> seen;
    for (int page = 0; page < 3; ++page) {
        EXPECT_THAT(row(1), StartsWith("waterworks"));
        EXPECT_THAT(row(2), StartsWith(" pump-house"));
        for (const TableLine& line : rows())
            if (line.text.rfind("  P", 0) == 0)
                seen.push_back(line.text.substr(2, line.text.find(' ', 2) - 2));
        view().turnPage();
    }
    for (unsigned i = 0; i < 50; ++i)
        EXPECT_THAT(seen, testing::Contains("P" + std::to_string(i)));
    EXPECT_THAT(row(3), StartsWith("  P0 ")) << "behind the last page comes the first one";
    EXPECT_FALSE(view().isInHand());
    press(TableKey::Kind::Down);
    EXPECT_TRUE(view().isInHand());
}

TEST_F(ShownTable, ScrollsByKeys) {
    usePoints(100);
    EXPECT_EQ(selected(), "none");
    press(TableKey::Kind::Down);
    EXPECT_EQ(selected(), "P1");
    EXPECT_THAT(row(3), StartsWith("  P0 "));
    press(TableKey::Kind::PageDown);
    EXPECT_EQ(selected(), "P21");
    EXPECT_THAT(row(3), StartsWith("  P20 "));
    press(TableKey::Kind::Up);
    press(TableKey::Kind::Up);
    EXPECT_EQ(selected(), "P19");
    EXPECT_THAT(row(3), StartsWith("  P19 "));
    press(TableKey::Kind::End);
    EXPECT_EQ(selected(), "P99");
    EXPECT_THAT(row(3), StartsWith("  P80 "));
    EXPECT_THAT(row(0), HasSubstr("81-100 of 100"));
    press(TableKey::Kind::PageUp);
    EXPECT_EQ(selected(), "P79");
    press(TableKey::Kind::Home);
    EXPECT_EQ(selected(), "P0");
    type("jjk");
    EXPECT_EQ(selected(), "P1");
}

TEST_F(ShownTable, ShowsTheHeadingsOfAnRtuThatBeginsInTheMiddle) {
    usePoints(5);
    addRtu("tank", 5);
    EXPECT_THAT(row(8), StartsWith(" tank"));
    EXPECT_THAT(row(9), StartsWith("  P0 "));
}

TEST_F(ShownTable, FindsAPointByNameAddressOrRtu) {
    usePoints(100);
    addRtu("tank", 3);
    rows();
    type("/p77");
    EXPECT_EQ(rows().back().text, "search: p77_");
    press(TableKey::Kind::Enter);
    EXPECT_EQ(selected(), "P77");
    type("/R4");
    press(TableKey::Kind::Enter);
    EXPECT_EQ(selected(), "P4") << "of the second RTU no address is like that: on from the top";
    type("n");
    EXPECT_EQ(selected(), "P40");
    type("N");
    EXPECT_EQ(selected(), "P4");
    type("/tank");
    press(TableKey::Kind::Enter);
    EXPECT_THAT(row(21), HasSubstr(" tank  station 5"));
    type("/nowhere");
    press(TableKey::Kind::Enter);
    EXPECT_EQ(rows().back().text, "nothing here holds \"nowhere\"");
}

TEST_F(ShownTable, TakesBackWhatIsTypedInASearch) {
    type("/ab");
    press(TableKey::Kind::Backspace);
    EXPECT_EQ(rows().back().text, "search: a_");
    press(TableKey::Kind::Escape);
    EXPECT_THAT(rows().back().text, HasSubstr("/ search"));
}

TEST_F(ShownTable, ShowsTheRtusOfANameAlone) {
    addRtu("tank", 2);
    addRtu("high tank", 2);
    type("rTANK");
    EXPECT_THAT(row(0), AllOf(HasSubstr("1-4 of 4"), HasSubstr("RTUs \"TANK\"")));
    EXPECT_THAT(row(2), StartsWith(" tank"));
    press(TableKey::Kind::Enter);
    EXPECT_THAT(row(5), StartsWith(" high tank"));
    press(TableKey::Kind::Escape);
    EXPECT_THAT(row(0), HasSubstr("of 7"));
}

TEST_F(ShownTable, ShowsWhatIsNotGoodAlone) {
    read(0, 1, 400);
    read(1, 1.5, 400, PointQuality::Bad);
    type("b");
    EXPECT_THAT(row(0), AllOf(HasSubstr("1-2 of 2"), HasSubstr("not good")));
    EXPECT_THAT(row(3), HasSubstr("FLOW"));
    EXPECT_THAT(row(4), HasSubstr("LEVEL"));
    read(1, 1.5, 300);
    EXPECT_THAT(rows(100, 24, now + 1'000)[3].text, HasSubstr("LEVEL"));
    type("b");
    EXPECT_THAT(row(0), Not(HasSubstr("not good")));
}

TEST_F(ShownTable, TellsWhenNoPointIsLeft) {
    for (unsigned number = 0; number < 3; ++number)
        read(number, 1, 400);
    type("b");
    EXPECT_THAT(row(1), HasSubstr("no point is like that"));
    press(TableKey::Kind::Down);
    type("l");
    EXPECT_THAT(row(1), StartsWith("waterworks"));
}

TEST_F(ShownTable, SortsByAge) {
    read(0, 1, 400);
    read(1, 1.5, 5'000);
    type("a");
    EXPECT_THAT(row(1), AllOf(StartsWith("  pump-house/LEVEL"), HasSubstr("never read")));
    EXPECT_THAT(row(2), StartsWith("  pump-house/FLOW"));
    EXPECT_THAT(row(3), StartsWith("  pump-house/RUN"));
    type("a");
    EXPECT_THAT(row(3), StartsWith("  RUN"));
}

TEST_F(ShownTable, KeepsThePointSelectedWhenTheOrderChanges) {
    read(0, 1, 400);
    read(1, 1.5, 5'000);
    press(TableKey::Kind::Down);
    EXPECT_EQ(selected(), "FLOW");
    type("a");
    EXPECT_EQ(selected(), "pump-house/FLOW");
}

TEST_F(ShownTable, ShowsTheHealthOfTheSelectedPointsLine) {
    for (int id = 5; id < 40; ++id) {
        host::Channel other = site.channels[0];
        other.id = id;
        other.name = "line " + std::to_string(id);
        site.channels.push_back(other);
    }
    press(TableKey::Kind::End);
    type("l");
    host::SiteFigures figures;
    for (const host::Channel& channel : site.channels) {
        ChannelStatus one;
        one.connected = channel.id != 39;
        one.failedOpens = 1;
        figures.channels.push_back({&channel, one});
        figures.rtus.push_back({&channel, &channel.rtus[0], status});
    }
    const std::vector<TableLine> lines = view().rows({100, 24}, now, figures);
    std::string shown;
    for (const TableLine& line : lines)
        shown += line.text + '\n';
    EXPECT_THAT(shown, HasSubstr("\nline 39  SBus-Ethernet  udp://127.0.0.1:9\n NOT OPEN  1 failed open  "
                                 "0 channel errors  0 changes of ends"));
    EXPECT_THAT(shown, Not(HasSubstr("line 5 ")));
    press(TableKey::Kind::Escape);
    EXPECT_THAT(view().rows({100, 24}, now, figures)[0].text, HasSubstr("of 108"));
}

TEST_F(ShownTable, WrapsTheNewestMessagesWithTheirTimes) {
    view().tell({now, "old"});
    view().tell({now, "a message that is longer than the terminal is wide and goes on in a second row"});
    const std::string time =
        QDateTime::fromMSecsSinceEpoch(now).toString(QStringLiteral("HH:mm:ss")).toStdString();
    const std::vector<TableLine> lines = rows(60);
    EXPECT_EQ(lines[20].text, time + "  old");
    EXPECT_EQ(lines[21].text, time + "  a message that is longer than the terminal is wide");
    EXPECT_EQ(lines[22].text, "          and goes on in a second row");
    EXPECT_THAT(lines[23].text, StartsWith("/ search"));
}

TEST_F(ShownTable, ShowsAllMessagesWithTheNewestInView) {
    for (int i = 0; i < 100; ++i)
        view().tell({now, "message " + std::to_string(i)});
    type("m");
    EXPECT_THAT(row(22), HasSubstr("message 99"));
    press(TableKey::Kind::Home);
    EXPECT_THAT(row(1), HasSubstr("message 0"));
    press(TableKey::Kind::PageDown);
    EXPECT_THAT(row(1), HasSubstr("message 22"));
}

TEST_F(ShownTable, KeepsTheNewestThousandMessages) {
    for (int i = 0; i < 1'003; ++i)
        view().tell({now, "message " + std::to_string(i)});
    EXPECT_EQ(view().messages().size(), 1'000U);
    EXPECT_EQ(view().messages().front().text, "message 3");
    EXPECT_EQ(view().forgottenMessages(), 3U);
}

TEST(TableText, CountsCharactersAndHidesControls) {
    using host::fitText;
    const std::string bridge = "Br\xC3\xBC"
                               "cke";
    EXPECT_EQ(fitText(bridge, 8), bridge + "  ");
    EXPECT_EQ(fitText(bridge, 3), bridge.substr(0, 4));
    EXPECT_EQ(fitText("7", 3, true), "  7");
    EXPECT_EQ(fitText("a\x1b[2Jb", 6), "a?[2Jb");
}

TEST(TableText, WrapsAtBlanksAndWithinLongWords) {
    using host::wrapText;
    using testing::ElementsAre;
    EXPECT_THAT(wrapText("one two three", 7, 0), ElementsAre("one two", "three"));
    EXPECT_THAT(wrapText("one two three", 8, 2), ElementsAre("one two", "  three"));
    EXPECT_THAT(wrapText("abcdefgh", 3, 0), ElementsAre("abc", "def", "gh"));
    EXPECT_THAT(wrapText("", 3, 0), ElementsAre(""));
    EXPECT_THAT(wrapText("Br\xC3\xBC"
                         "cke",
                         3, 0),
                ElementsAre("Br\xC3\xBC", "cke"));
}
