#include "MediaTable.h"

#include <gtest/gtest.h>

#include <QList>

namespace {

constexpr quint32 preset = 4711;

quint32 writeCommand(const char* media) {
    quint32 command = preset;
    sbus::writeCommandForMedia(command, QString::fromLatin1(media));
    return command;
}

quint32 readCommand(const char* media) {
    return sbus::readCommandForMedia(QString::fromLatin1(media));
}

int readLimit(const char* media) {
    return sbus::readLimitForMedia(QString::fromLatin1(media));
}

} // namespace

struct MediaRow {
    const char* media;
    quint32 readCommand;
    quint32 writeCommand;
    int limit;
};

void PrintTo(const MediaRow& row, std::ostream* out) {
    *out << row.media;
}

class MediaTable : public testing::TestWithParam<MediaRow> {};

TEST_P(MediaTable, GivesReadCommandWriteCommandAndLimit) {
    const MediaRow& row = GetParam();
    EXPECT_EQ(readCommand(row.media), row.readCommand);
    EXPECT_EQ(writeCommand(row.media), row.writeCommand);
    EXPECT_EQ(readLimit(row.media), row.limit);
}

INSTANTIATE_TEST_SUITE_P(Rows, MediaTable,
                         testing::Values(MediaRow{"C", 0, 10, 32},        // counter
                                         MediaRow{"R", 6, 14, 128},       // register
                                         MediaRow{"T", 7, 15, 32},        // timer
                                         MediaRow{"F", 2, 11, 128},       // flag
                                         MediaRow{"O", 5, 13, 128},       // output
                                         MediaRow{"I", 3, preset, 128},   // input
                                         MediaRow{"P", 6, preset, 32},    // no element at all
                                         MediaRow{"X", 6, preset, 128})); // any other letter

TEST(MediaLetter, WriteCommandOfAnInputLeavesThePresetValue) {
    EXPECT_EQ(writeCommand("I"), preset);
}

TEST(MediaLetter, WriteCommandOfTheLetterPLeavesThePresetValue) {
    EXPECT_EQ(writeCommand("P"), preset);
}

TEST(MediaLetter, RegistersAreGroupedUpToTheLargeLimit) {
    EXPECT_EQ(readLimit("R"), 128);
}

TEST(MediaLetter, TheLetterPIsReadAsARegisterUnderTheSmallLimit) {
    EXPECT_EQ(readCommand("P"), 6u);
    EXPECT_EQ(readLimit("P"), 32);
}

TEST(MediaLetter, LowerCaseIsAnyOtherText) {
    for (const char* media : {"c", "t", "f", "o", "i", "p"}) {
        EXPECT_EQ(readCommand(media), 6u) << media;
        EXPECT_EQ(readLimit(media), 128) << media;
        EXPECT_EQ(writeCommand(media), preset) << media;
    }
    EXPECT_EQ(writeCommand("r"), preset);
}

TEST(MediaLetter, LongerAndEmptyTextsAreAnyOtherText) {
    for (const char* media : {"", "X12.3", "FF", "T ", " C", "I1"}) {
        EXPECT_EQ(readCommand(media), 6u) << media;
        EXPECT_EQ(readLimit(media), 128) << media;
        EXPECT_EQ(writeCommand(media), preset) << media;
    }
}

TEST(MediaLetter, AnswersArePublishedUnderTheLetterOfTheirReadCommand) {
    const QList<QPair<quint32, QString>> letters = {{0, QStringLiteral("C")}, {2, QStringLiteral("F")},
                                                    {3, QStringLiteral("I")}, {5, QStringLiteral("O")},
                                                    {6, QStringLiteral("R")}, {7, QStringLiteral("T")}};
    for (const auto& [command, letter] : letters)
        EXPECT_EQ(sbus::mediaForReadCommand(command), letter) << command;
}

TEST(MediaLetter, CommandsThatReadNothingHaveNoLetter) {
    for (quint32 command : {1u, 4u, 8u, 9u, 10u, 11u, 12u, 13u, 14u, 15u, 16u})
        EXPECT_EQ(sbus::mediaForReadCommand(command), QString()) << command;
}
