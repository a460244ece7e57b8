#include "services/console/TableKeys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::KeyDecoder;
using host::TableKey;
using Kind = host::TableKey::Kind;
using testing::ElementsAre;

namespace {

std::vector<Kind> kindsOf(const std::vector<TableKey>& keys) {
    std::vector<Kind> kinds;
    for (const TableKey& key : keys)
        kinds.push_back(key.kind);
    return kinds;
}

} // namespace

TEST(TableKeys, AreThoseOfEitherModeOfATerminal) {
    KeyDecoder decoder;
    EXPECT_THAT(kindsOf(decoder.decode("\x1b[A\x1bOA\x1b[B\x1b[5~\x1b[6~\x1b[H\x1b[4~\r\x7f")),
                ElementsAre(Kind::Up, Kind::Up, Kind::Down, Kind::PageUp, Kind::PageDown, Kind::Home,
                            Kind::End, Kind::Enter, Kind::Backspace));
}

TEST(TableKeys, AreCharactersOfSeveralBytes) {
    KeyDecoder decoder;
    const std::vector<TableKey> keys = decoder.decode("a\xC3\xBC");
    ASSERT_EQ(keys.size(), 2U);
    EXPECT_EQ(keys[0].character, "a");
    EXPECT_EQ(keys[1].character, "\xC3\xBC");
}

TEST(TableKeys, AreWholeWhenTheirBytesComeInPieces) {
    KeyDecoder decoder;
    EXPECT_TRUE(decoder.decode("\x1b").empty());
    EXPECT_TRUE(decoder.decode("[").empty());
    EXPECT_THAT(kindsOf(decoder.decode("A")), ElementsAre(Kind::Up));
    EXPECT_TRUE(decoder.decode("\xC3").empty());
    EXPECT_EQ(decoder.decode("\xBC").at(0).character, "\xC3\xBC");
}

TEST(TableKeys, HaveAnEscapeBehindWhichNothingComes) {
    KeyDecoder decoder;
    EXPECT_TRUE(decoder.decode("\x1b").empty());
    EXPECT_THAT(kindsOf(decoder.decode("")), ElementsAre(Kind::Escape));
    EXPECT_THAT(kindsOf(decoder.decode("\x1bq")), ElementsAre(Kind::Escape, Kind::Character));
}

TEST(TableKeys, PassOverWhatTheyDoNotKnow) {
    KeyDecoder decoder;
    EXPECT_THAT(kindsOf(decoder.decode("\x1b[15;2~\x1b[C\x01x")), ElementsAre(Kind::Character));
    EXPECT_TRUE(decoder.decode("").empty());
}
