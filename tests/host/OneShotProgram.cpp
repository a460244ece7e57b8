#include "OneShotProgram.h"

#include "StopProgram.h"

namespace {

constexpr int patienceMs = 100'000;

sim::Site siteOf(sim::Framing framing, const QTemporaryDir& folder) {
    const std::string device = folder.filePath(QStringLiteral("line")).toStdString();
    sim::Site site;
    site.lines.push_back(framing == sim::Framing::Ethernet ? sim::udpLine(1, {5})
                                                           : sim::serialLine(1, {5}, framing, device));
    return site;
}

sim::Options options() {
    sim::Options options;
    options.sizes.set(sim::Media::Registers, 6000);
    return options;
}

} // namespace

OneShotProgram::OneShotProgram(sim::Framing framing)
    : lineFraming(framing), simulator(siteOf(framing, folder), options()) {
    EXPECT_EQ(simulator.start(), "");
    if (framing == sim::Framing::Ethernet) {
        link = plainLink = "udp://127.0.0.1:" + std::to_string(simulator.port(lineId));
        return;
    }
    link = "serial:" + simulator.device(lineId) + "?baud=19200";
    plainLink = link + "&parity=none&stop=1";
}

void OneShotProgram::start(QProcess& program, const std::string& commandLine) {
    QStringList arguments = QString::fromStdString(commandLine).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (QString& argument : arguments)
        if (argument == QStringLiteral("LINK"))
            argument = QString::fromStdString(link);
    if (lineFraming == sim::Framing::BreakMode)
        arguments << QStringLiteral("--mode") << QStringLiteral("break") << QStringLiteral("--break-delay")
                  << QStringLiteral("1");
    program.start(QStringLiteral(HOST_PROGRAM), arguments);
}

Ending OneShotProgram::endOf(QProcess& program) {
    EXPECT_TRUE(program.state() == QProcess::NotRunning || program.waitForFinished(patienceMs));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    return {program.exitCode(), program.readAllStandardOutput().toStdString(),
            program.readAllStandardError().toStdString()};
}

void OneShotProgram::interrupt(const QProcess& program) {
    stopProgram(program, StopBy::Key);
}

Ending OneShotProgram::run(const std::string& commandLine) {
    QProcess program;
    start(program, commandLine);
    return endOf(program);
}

std::string framingName(const testing::TestParamInfo<sim::Framing>& info) {
    switch (info.param) {
    case sim::Framing::DataMode:
        return "DataMode";
    case sim::Framing::BreakMode:
        return "BreakMode";
    case sim::Framing::Ethernet:
        break;
    }
    return "Ethernet";
}
