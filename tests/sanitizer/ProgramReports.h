#pragma once

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

// What sanitizers report in the programs that a test starts. Some of these programs are killed, and of some
// nobody reads the error output or the exit status; so they write their reports into a folder, where each
// test looks at its end. A report that is found there and was not taken makes the test fail. Reports of the
// test's own process go to its error output and make it end with the sanitizer's exit status.
class ProgramReports : public testing::EmptyTestEventListener {
public:
    ProgramReports();

    // The reports so far, as one text; they are removed.
    static std::string take();

    void OnTestEnd(const testing::TestInfo& test) override;

private:
    const QTemporaryDir folder;
};
