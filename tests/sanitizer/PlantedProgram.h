#pragma once

#include <QProcess>

#include <gtest/gtest.h>

// Runs the program of planted faults; its exit status.
inline int runPlanted(const char* fault) {
    constexpr int patienceMs = 60'000;
    QProcess program;
    program.start(QStringLiteral(PLANTED_FAULTS), {QString::fromLatin1(fault)});
    EXPECT_TRUE(program.waitForFinished(patienceMs));
    EXPECT_EQ(program.readAllStandardOutput().trimmed(), "done");
    return program.exitCode();
}
