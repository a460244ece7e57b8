#include "CrashReport.h"
#ifdef SBUS_SANITIZED
#include "ProgramReports.h"
#endif

#include <QApplication>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

// The platform without a screen that Qt comes with here.
#ifdef Q_OS_WIN
constexpr auto withoutScreen = "minimal";
#else
constexpr auto withoutScreen = "offscreen";
#endif

} // namespace

void takeCrashReport() {
#ifdef SBUS_SANITIZED
    ProgramReports::take();
#endif
}

// One application object serves every test: option pages and translators need it.
int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (testing::FLAGS_gtest_list_tests)
        return RUN_ALL_TESTS();
    qputenv("QT_QPA_PLATFORM", withoutScreen);
    qputenv("LC_ALL", "C.UTF-8"); // English texts, whatever the language of the developer's system
#ifdef SBUS_SANITIZED
    testing::UnitTest::GetInstance()->listeners().Append(new ProgramReports);
#endif
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
