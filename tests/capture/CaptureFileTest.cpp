#include "services/capture/CaptureFile.h"

#include "CaptureDirectory.h"
#include "Printers.h"
#include "TestDisk.h"

#include <gmock/gmock.h>

using host::CaptureFile;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class CaptureFiles : public CaptureDirectory {};

} // namespace

TEST_F(CaptureFiles, BeginWithTheirHeader) {
    CaptureFile file(options());
    EXPECT_EQ(file.begin(), "");
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre());
    EXPECT_EQ(contentOf("line.pcap").size(), 24);
}

TEST_F(CaptureFiles, HoldWhatIsWrittenAtOnce) {
    CaptureFile file(options());
    ASSERT_EQ(file.begin(), "");
    EXPECT_EQ(file.write(records(1, 2)), 2U);
    EXPECT_EQ(file.write(records(3, 3)), 1U);
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(1, 2, 3)) << "while it is open";
    EXPECT_EQ(fileNames(), QStringList{"line.pcap"});
}

TEST_F(CaptureFiles, MoveOnBeforeTheyGetTooLarge) {
    CaptureFile file(options(2, 3));
    ASSERT_EQ(file.begin(), "");
    EXPECT_EQ(file.write(records(1, 2)), 2U);
    EXPECT_EQ(fileNames(), QStringList{"line.pcap"}) << "just full";
    EXPECT_EQ(file.write(records(3, 5)), 3U);
    EXPECT_EQ(fileNames(), (QStringList{"line.1.pcap", "line.2.pcap", "line.pcap"}));
    EXPECT_THAT(recordsIn("line.2.pcap"), ElementsAre(1, 2));
    EXPECT_THAT(recordsIn("line.1.pcap"), ElementsAre(3, 4));
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(5));
}

TEST_F(CaptureFiles, LoseTheOldest) {
    CaptureFile file(options(2, 3));
    ASSERT_EQ(file.begin(), "");
    EXPECT_EQ(file.write(records(1, 7)), 7U);
    EXPECT_EQ(fileNames(), (QStringList{"line.1.pcap", "line.2.pcap", "line.pcap"}));
    EXPECT_THAT(recordsIn("line.2.pcap"), ElementsAre(3, 4));
    EXPECT_THAT(recordsIn("line.1.pcap"), ElementsAre(5, 6));
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(7));
}

TEST_F(CaptureFiles, BeginAnewWhenThereIsToBeOne) {
    CaptureFile file(options(2, 1));
    ASSERT_EQ(file.begin(), "");
    EXPECT_EQ(file.write(records(1, 5)), 5U);
    EXPECT_EQ(fileNames(), QStringList{"line.pcap"});
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(5));
}

TEST_F(CaptureFiles, HoldOneRecordHoweverSmallTheyAreToBe) {
    CaptureFile file(options(0, 5));
    ASSERT_EQ(file.begin(), "");
    EXPECT_EQ(file.write(records(1, 2)), 2U);
    EXPECT_THAT(recordsIn("line.1.pcap"), ElementsAre(1));
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(2));
}

TEST_F(CaptureFiles, OfAnEarlierRunMoveOn) {
    for (int run = 1; run <= 3; ++run) {
        CaptureFile file(options());
        ASSERT_EQ(file.begin(), "");
        EXPECT_EQ(file.write(records(run, run)), 1U);
    }
    EXPECT_THAT(recordsIn("line.2.pcap"), ElementsAre(1));
    EXPECT_THAT(recordsIn("line.1.pcap"), ElementsAre(2));
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(3));
}

TEST_F(CaptureFiles, StayWhereTheyAreWhenTheNewestWasTakenAway) {
    put("line.1.pcap", "kept");
    CaptureFile file(options());
    ASSERT_EQ(file.begin(), "");
    EXPECT_EQ(contentOf("line.1.pcap"), "kept");
}

TEST_F(CaptureFiles, TakeThePlaceOfAnEmptyFile) {
    put("line.pcap", "");
    CaptureFile file(options());
    ASSERT_EQ(file.begin(), "");
    EXPECT_EQ(fileNames(), QStringList{"line.pcap"});
}

TEST_F(CaptureFiles, LeaveAnotherFileAlone) {
    put("line.pcap", "[[channel]]\n");
    CaptureFile file(options());
    EXPECT_THAT(file.begin(), HasSubstr("line.pcap\" exists and is no capture; give another name"));
    EXPECT_EQ(contentOf("line.pcap"), "[[channel]]\n");
    EXPECT_EQ(fileNames(), QStringList{"line.pcap"});
}

TEST_F(CaptureFiles, AreNoDirectory) {
    ASSERT_TRUE(QDir().mkpath(pathOf("line.pcap")));
    CaptureFile file(options());
    EXPECT_THAT(file.begin(), HasSubstr("is no file that can be captured into; give another name"));
}

TEST_F(CaptureFiles, WantTheirDirectory) {
    host::CaptureOptions elsewhere = options();
    elsewhere.path = pathOf("nowhere/line.pcap").toStdString();
    CaptureFile file(elsewhere);
    EXPECT_THAT(file.begin(), HasSubstr("nowhere/line.pcap\" cannot be written: "));
    EXPECT_THAT(file.begin(), HasSubstr("; check that its directory exists and its permissions"));
}

TEST_F(CaptureFiles, HaveNamesInAnyLanguage) {
    host::CaptureOptions umlaut = options(1, 2);
    umlaut.path = pathOf("Zähler.pcap").toStdString();
    CaptureFile file(umlaut);
    ASSERT_EQ(file.begin(), "");
    EXPECT_EQ(file.write(records(1, 2)), 2U);
    EXPECT_EQ(fileNames(),
              (QStringList{QString::fromUtf8("Zähler.1.pcap"), QString::fromUtf8("Zähler.pcap")}));
}

TEST_F(CaptureFiles, GoOnAfterARefusal) {
    TestDisk disk;
    CaptureFile file(options(3), disk.open());
    ASSERT_EQ(file.begin(), "");
    EXPECT_EQ(file.write(records(1, 2)), 2U);
    disk.refuse();
    EXPECT_EQ(file.write(records(3, 3)), 0U);
    EXPECT_EQ(file.write(records(4, 4)), 0U);
    disk.work();
    EXPECT_EQ(file.write(records(5, 6)), 2U);
    EXPECT_THAT(recordsIn("line.1.pcap"), ElementsAre(1, 2, 5));
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(6));
}

TEST_F(CaptureFiles, BeginAnewWhenTheirFileIsGoneAfterARefusal) {
    TestDisk disk;
    CaptureFile file(options(), disk.open());
    ASSERT_EQ(file.begin(), "");
    EXPECT_EQ(file.write(records(1, 2)), 2U);
    disk.refuse();
    EXPECT_EQ(file.write(records(3, 3)), 0U);
    disk.work();
    ASSERT_TRUE(QFile::remove(pathOf("line.pcap")));
    EXPECT_EQ(file.write(records(4, 4)), 1U);
    EXPECT_THAT(recordsIn("line.pcap"), ElementsAre(4));
    EXPECT_EQ(fileNames(), QStringList{"line.pcap"});
}
