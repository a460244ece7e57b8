#include <QApplication>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// One application object serves every test: option pages and translators need it.
int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (testing::FLAGS_gtest_list_tests)
        return RUN_ALL_TESTS();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
