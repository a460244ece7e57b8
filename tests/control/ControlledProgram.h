#pragma once

#include "Eventually.h"
#include "services/control/SocketPath.h"

#include <Simulator.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <memory>

constexpr int patienceMs = 60'000;
#ifdef _WIN32
constexpr bool socketsAreFiles = false;
#else
constexpr bool socketsAreFiles = true;
#endif

struct Ending {
    int status = -1;
    std::string output;
    std::string errors;
};

// A host and its clients as programs, with simulated controllers behind them.
class ControlledProgram : public testing::Test {
protected:
    ControlledProgram() : simulator({{sim::udpLine(1, {5, 6})}}) {
        EXPECT_EQ(simulator.start(), "");
        writeSite("1s");
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder.path());
    }

    void TearDown() override {
        for (const auto& one : started) {
            one->kill();
            one->waitForFinished(patienceMs);
        }
    }

    // Integrity polls come once an hour, the others each `period`.
    void writeSite(const char* period) {
        QFile file(site);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("[[channel]]\nid = 1\nname = \"waterworks\"\ntype = \"SBus-Ethernet\"\nprimary = "
                   "\"udp://127.0.0.1:" +
                   QByteArray::number(simulator.port(1)) + "\"\n");
        for (const char* const rtu : {"pump-house\"\nid = 1\nstation = 5", "tank\"\nid = 2\nstation = 6"})
            file.write(
                "[[channel.rtu]]\nname = \"" + QByteArray(rtu) +
                "\ntimeout = \"300ms\"\nscan = { integrity = \"1h\", status = \"" + period +
                "\", analog = \"1h\" }\n"
                "[[channel.rtu.point]]\nid = 1\nname = \"P1_START\"\nkind = \"status\"\naddress = \"O32\"\n"
                "[[channel.rtu.point]]\nid = 2\nname = \"LEVEL\"\nkind = \"analog\"\naddress = \"R10\"\n");
    }

    QProcess& start(const QStringList& arguments) {
        started.push_back(std::make_unique<QProcess>());
        QProcess& program = *started.back();
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(HOST_PROGRAM), arguments);
        EXPECT_TRUE(program.waitForStarted(patienceMs));
        return program;
    }

    Ending endOf(QProcess& program) {
        EXPECT_TRUE(program.waitForFinished(patienceMs));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        return {program.exitCode(), program.readAllStandardOutput().toStdString(),
                program.readAllStandardError().toStdString()};
    }

    Ending ctl(const QStringList& arguments) {
        return endOf(start(QStringList{QStringLiteral("ctl"), site} + arguments));
    }
    Ending ctl(const char* arguments) { return ctl(QString::fromLatin1(arguments).split(QLatin1Char(' '))); }

    // A host that answers its clients and has read every point.
    QProcess& startHost(const QStringList& arguments = {}) {
        QProcess& host = start(QStringList{QStringLiteral("run"), site} + arguments);
        EXPECT_TRUE(eventually([this] {
            const std::string status = ctl("status --format json").output;
            return status.find("\"never_read_points\":0") != std::string::npos &&
                   status.find("\"never_read_points\":2") == std::string::npos;
        }));
        return host;
    }

    std::string socketPath() const {
        qputenv("XDG_RUNTIME_DIR", folder.path().toLocal8Bit());
        std::string path = host::controlSocketPaths(site.toStdString()).front();
        qunsetenv("XDG_RUNTIME_DIR");
        return path;
    }

    const QTemporaryDir folder;
    const QString site = folder.filePath(QStringLiteral("site.toml"));
    sim::Simulator simulator;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    std::vector<std::unique_ptr<QProcess>> started;
};
