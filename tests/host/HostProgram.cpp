#include "HostProgram.h"

#include <QFile>

HostProgram::HostProgram() : simulator({{sim::udpLine(lineId, {station})}}) {
    EXPECT_EQ(simulator.start(), "");
    for (const char* const variable : {"XDG_RUNTIME_DIR", "XDG_STATE_HOME"})
        environment.insert(QString::fromLatin1(variable), folder.path());
    writeSite("1,VALVE,status,O40,,,,,60000\n");
}

void HostProgram::TearDown() {
    for (const auto& one : started) {
        one->kill();
        one->waitForFinished(patienceMs);
    }
}

void HostProgram::writeSite(const QByteArray& points) const {
    QFile table(folder.filePath(QStringLiteral("points.csv")));
    ASSERT_TRUE(table.open(QIODevice::WriteOnly | QIODevice::Truncate));
    table.write("id,name,kind,address,format,value,second_address,second_value,pulse_ms\n" + points);
    QFile file(site);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://127.0.0.1:" +
               QByteArray::number(simulator.port(lineId)) +
               "\"\n[[channel.rtu]]\nid = 1\nname = \"pump-house\"\nstation = 5\ntimeout = \"300ms\"\n"
               "points = \"points.csv\"\n");
}

QProcess& HostProgram::start(const QStringList& arguments) {
    started.push_back(std::make_unique<QProcess>());
    QProcess& program = *started.back();
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(HOST_PROGRAM), arguments);
    EXPECT_TRUE(program.waitForStarted(patienceMs));
    return program;
}

QProcess& HostProgram::startHost(const QStringList& more) {
    QProcess& host = start(QStringList{QStringLiteral("run"), site} + more);
    EXPECT_TRUE(eventually([this] {
        const Ending status =
            ctl({QStringLiteral("status"), QStringLiteral("--format"), QStringLiteral("json")});
        return status.status == 0 && status.output.find("\"never_read_points\":0") != std::string::npos;
    }));
    return host;
}

HostProgram::Ending HostProgram::endOf(QProcess& program) const {
    EXPECT_TRUE(program.state() == QProcess::NotRunning || program.waitForFinished(patienceMs));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    return {program.exitCode(), program.readAllStandardOutput().toStdString(),
            program.readAllStandardError().toStdString()};
}
