#include "PlantedProgram.h"
#include "ProgramReports.h"

#include <QRegularExpression>

#include <gmock/gmock.h>

#include <vector>

// The thread sanitizer finds faults in code that uses Qt's locks, and takes correct use for correct.

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr int statusOfReports = 66; // the sanitizer's

// The kinds of faults in `reports`.
std::vector<std::string> kindsIn(const std::string& reports) {
    const QRegularExpression heading(QStringLiteral("WARNING: ThreadSanitizer: ([a-z-]+( [a-z-]+)*)"));
    std::vector<std::string> kinds;
    for (auto found = heading.globalMatch(QString::fromStdString(reports)); found.hasNext();)
        kinds.push_back(found.next().captured(1).toStdString());
    return kinds;
}

} // namespace

TEST(PlantedFaults, RaceOfTwoWritersWithDifferentLocksIsReported) {
    const int status = runPlanted("race");
    const std::string reports = ProgramReports::take();
    EXPECT_THAT(kindsIn(reports), ElementsAre("data race")) << reports;
    EXPECT_THAT(reports, HasSubstr("PlantedFaults.cpp:"));
    EXPECT_EQ(status, statusOfReports);
}

TEST(PlantedFaults, LocksTakenInTwoOrdersAreReported) {
    const int status = runPlanted("inversion");
    const std::string reports = ProgramReports::take();
    EXPECT_THAT(kindsIn(reports), ElementsAre("lock-order-inversion")) << reports;
    EXPECT_THAT(reports, HasSubstr("PlantedFaults.cpp:"));
    EXPECT_EQ(status, statusOfReports);
}

TEST(PlantedFaults, CorrectUseIsNotReported) {
    const int status = runPlanted("none");
    EXPECT_EQ(ProgramReports::take(), "");
    EXPECT_EQ(status, 0);
}
