#pragma once

#include <QProcess>

#include <gtest/gtest.h>

#include <string>

// What mbpoll says, asked once, with addresses from 0 on and of a value the upper half first.
inline std::string mbpoll(std::uint16_t port, const QStringList& options, const QStringList& values = {}) {
    QProcess program;
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(QStringLiteral(MBPOLL_PROGRAM),
                  QStringList{QStringLiteral("-m"), QStringLiteral("tcp"), QStringLiteral("-p"),
                              QString::number(port), QStringLiteral("-0"), QStringLiteral("-B"),
                              QStringLiteral("-1"), QStringLiteral("-o"), QStringLiteral("10")} +
                      options + QStringList{QStringLiteral("127.0.0.1")} + values);
    EXPECT_TRUE(program.waitForFinished(60'000));
    return program.readAll().toStdString();
}

// "-t 4:int -r 2" to its words.
inline QStringList words(const char* text) {
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}
