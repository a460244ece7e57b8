#include "Printers.h"

#include <MediaTable.h>

#include <QStringList>

#include <gtest/gtest.h>

namespace {

constexpr quint32 noCommand = 99;

quint32 writeCommandOf(const QString& media) {
    quint32 command = noCommand;
    sbus::writeCommandForMedia(command, media);
    return command;
}

} // namespace

TEST(MediaTable, EachLetterHasItsCommandsAndItsLimit) {
    struct Row {
        const char* media;
        quint32 read, write;
        int limit;
    };
    for (const Row& row :
         {Row{"C", 0, 10, 32}, Row{"R", 6, 14, 128}, Row{"T", 7, 15, 32}, Row{"F", 2, 11, 128},
          Row{"O", 5, 13, 128}, Row{"I", 3, noCommand, 128}, Row{"P", 6, noCommand, 32}}) {
        EXPECT_EQ(sbus::readCommandForMedia(row.media), row.read) << row.media;
        EXPECT_EQ(writeCommandOf(row.media), row.write) << row.media;
        EXPECT_EQ(sbus::readLimitForMedia(row.media), row.limit) << row.media;
    }
}

TEST(MediaTable, AnyOtherTextReadsAsRegistersAndCannotBeWritten) {
    for (const char* const media :
         {"", "X", "r", "c", "t", "f", "o", "i", "p", "RR", "C1", "T ", " T", "X12.3"}) {
        EXPECT_EQ(sbus::readCommandForMedia(media), 6u) << media;
        EXPECT_EQ(writeCommandOf(media), noCommand) << media;
        EXPECT_EQ(sbus::readLimitForMedia(media), 128) << media;
    }
}

TEST(MediaTable, AnAnswerIsPublishedUnderTheLetterOfItsReadCommand) {
    const QStringList letters{"C", "", "F", "I", "", "O", "R", "T"};
    for (int command = 0; command < letters.size(); ++command)
        EXPECT_EQ(sbus::mediaForReadCommand(static_cast<quint32>(command)), letters[command]) << command;
    for (const quint32 command : {8u, 9u, 10u, 11u, 12u, 13u, 14u, 15u, 16u, 99u})
        EXPECT_EQ(sbus::mediaForReadCommand(command), QString()) << command;
}
