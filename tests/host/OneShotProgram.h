#pragma once

#include <Simulator.h>

#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

struct Ending {
    int status = -1;
    std::string output;
    std::string errors;
};

// The program and a simulated controller, station 5, on a line of its own. The controller has the registers 0
// to 5999.
class OneShotProgram : public testing::Test {
protected:
    static constexpr int lineId = 1;
    static constexpr int station = 5;

    explicit OneShotProgram(sim::Framing framing = sim::Framing::Ethernet);

    // The command line, in one text: "read LINK R1 --count 2", where LINK is the line's.
    Ending run(const std::string& commandLine);
    void start(QProcess& program, const std::string& commandLine);
    static Ending endOf(QProcess& program);
    // As Ctrl-C does.
    static void interrupt(const QProcess& program);

    sim::Memory& memory() { return simulator.memory(lineId, station); }
    std::uint32_t word(sim::Media media, unsigned address) { return memory().get(media, address); }

    const QTemporaryDir folder; // of the serial device
    const sim::Framing lineFraming;
    sim::Simulator simulator;
    std::string link;      // as the command line takes it
    std::string plainLink; // as messages name it
};

// The same on every kind of line.
class OneShotOnEveryLine : public OneShotProgram, public testing::WithParamInterface<sim::Framing> {
protected:
    OneShotOnEveryLine() : OneShotProgram(GetParam()) {}
};

std::string framingName(const testing::TestParamInfo<sim::Framing>& info);
