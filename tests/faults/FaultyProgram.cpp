#include "FaultyProgram.h"

#include <QFile>

#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <sstream>
#include <utility>

namespace {

constexpr int patienceMs = 60'000; // only a failure comes near

const std::map<std::string, int> errorOfKind = {
    {"accept", EMFILE}, {"bind", EADDRINUSE}, {"connect", ENETUNREACH}, {"listen", EADDRINUSE},
    {"memory", ENOMEM}, {"mkdir", EACCES},    {"open", EMFILE},         {"read", EIO},
    {"receive", EIO},   {"rename", EACCES},   {"send", ENOBUFS},        {"socket", EMFILE},
    {"thread", EAGAIN}, {"waits", EMFILE},    {"write", ENOSPC}};

void takeReport(const QString& path, ProgramRun& run) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    std::istringstream text(file.readAll().toStdString());
    for (std::string line; std::getline(text, line);) {
        if (line == "failed") {
            run.hasFailed = true;
            continue;
        }
        std::istringstream words(line);
        Place place;
        words >> place.kind >> place.number;
        std::getline(words, place.calls);
        run.places.push_back(place);
    }
}

} // namespace

FaultyProgram::FaultyProgram(QString programFile, QStringList programArguments)
    : file(std::move(programFile)), arguments(std::move(programArguments)) {}

ProgramRun FaultyProgram::learn(const During& during) {
    return run("", during);
}

ProgramRun FaultyProgram::runWithout(const Place& place, const During& during) {
    return run(place.kind + " " + place.number + " " + std::to_string(errorOfKind.at(place.kind)), during);
}

ProgramRun FaultyProgram::run(const std::string& fault, const During& during) const {
    const QTemporaryDir folder;
    const QString report = folder.filePath(QStringLiteral("report"));
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAULTS_LIBRARY));
    environment.insert(QStringLiteral("SBUS_FAULT_REPORT"), report);
    environment.insert(QStringLiteral("SBUS_FAULT"), QString::fromStdString(fault));
    program.setProcessEnvironment(environment);
    program.start(file, arguments);
    EXPECT_TRUE(program.waitForStarted(patienceMs));
    if (during)
        during(program);
    ProgramRun run;
    run.hasReturned = hasEnded(program) || program.waitForFinished(patienceMs);
    if (!run.hasReturned) {
        program.kill();
        program.waitForFinished(patienceMs);
    }
    run.hasCrashed = run.hasReturned && program.exitStatus() != QProcess::NormalExit;
    run.status = program.exitCode();
    run.output = program.readAllStandardOutput().toStdString();
    run.errors = program.readAllStandardError().toStdString();
    takeReport(report, run);
    return run;
}

std::vector<Place> placesOf(const std::vector<Place>& all, const std::string& kind, std::size_t most) {
    std::vector<Place> ofKind;
    for (const Place& place : all)
        if (place.kind == kind)
            ofKind.push_back(place);
    if (ofKind.size() <= most)
        return ofKind;
    std::vector<Place> some;
    for (std::size_t i = 0; i < most; ++i)
        some.push_back(ofKind[i * ofKind.size() / most]);
    return some;
}

bool hasEnded(QProcess& program) {
    return program.state() == QProcess::NotRunning || program.waitForFinished(0);
}
