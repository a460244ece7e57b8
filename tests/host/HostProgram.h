#pragma once

#include "Eventually.h"

#include <Simulator.h>

#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

// The program, with a simulated controller on a UDP port: station 5, RTU "pump-house". Its directories are
// those of the test.
class HostProgram : public testing::Test {
protected:
    static constexpr int lineId = 1;
    static constexpr int station = 5;
    static constexpr int patienceMs = 30'000;

    struct Ending {
        int status = -1;
        std::string output;
        std::string errors;
    };

    HostProgram();
    void TearDown() override;

    // The rows of the point table, without its heading: "1,VALVE,status,O40,,,,,60000\n".
    void writeSite(const QByteArray& points) const;
    QProcess& start(const QStringList& arguments);
    // Started and ready to be commanded.
    QProcess& startHost(const QStringList& more = {});
    Ending endOf(QProcess& program) const;
    Ending run(const QStringList& arguments) { return endOf(start(arguments)); }
    Ending ctl(const QStringList& arguments) {
        return run(QStringList{QStringLiteral("ctl"), site} + arguments);
    }

    sim::Memory& memory() { return simulator.memory(lineId, station); }

    const QTemporaryDir folder;
    const QString site = folder.filePath(QStringLiteral("site.toml"));
    sim::Simulator simulator;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    std::vector<std::unique_ptr<QProcess>> started;
};
