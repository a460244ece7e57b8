#include "Eventually.h"
#include "Mbpoll.h"

#include <Simulator.h>

#include <gmock/gmock.h>

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

using testing::AnyOf;
using testing::HasSubstr;

namespace {

constexpr int patienceMs = 60'000;

// A host as a program, with one simulated controller (station 5) behind it.
class ModbusProgram : public testing::Test {
protected:
    ModbusProgram() : simulator({{sim::udpLine(1, {5})}}) { EXPECT_EQ(simulator.start(), ""); }

    ~ModbusProgram() override {
        host.kill();
        host.waitForFinished(patienceMs);
    }

    void writeSite(const QByteArray& modbus) {
        QFile file(site);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(
            "[[channel]]\nid = 1\nname = \"waterworks\"\ntype = \"SBus-Ethernet\"\nprimary = "
            "\"udp://127.0.0.1:" +
            QByteArray::number(simulator.port(1)) +
            "\"\n[[channel.rtu]]\nid = 1\nname = \"pump-house\"\nstation = 5\ntimeout = \"300ms\"\n"
            "attempts = 1\n"
            "scan = { integrity = \"1h\", status = \"200ms\", analog = \"200ms\" }\n"
            "[[channel.rtu.point]]\nid = 1\nname = \"P1_START\"\nkind = \"status\"\naddress = \"O32\"\n"
            "[[channel.rtu.point]]\nid = 2\nname = \"LEVEL\"\nkind = \"analog\"\naddress = \"R10\"\n" +
            modbus);
    }

    // Its port, once it listens.
    std::uint16_t startHost() {
        host.setProcessChannelMode(QProcess::MergedChannels);
        host.start(QStringLiteral(HOST_PROGRAM),
                   {QStringLiteral("run"), site, QStringLiteral("--no-control")});
        QRegularExpressionMatch match;
        EXPECT_TRUE(eventually([&] {
            host.waitForReadyRead(100);
            output += host.readAll();
            match = QRegularExpression(
                        QStringLiteral("modbus: listening on 127.0.0.1:(\\d+), (with writes|read only)"))
                        .match(QString::fromUtf8(output));
            return match.hasMatch();
        })) << output.toStdString();
        return match.captured(1).toUShort();
    }

    struct Ending {
        int status = -1;
        std::string output;
        std::string errors;
    };
    Ending check(const char* options) const {
        QProcess program;
        program.start(QStringLiteral(HOST_PROGRAM),
                      QStringList{QStringLiteral("check"), site} + words(options));
        EXPECT_TRUE(program.waitForFinished(patienceMs));
        return {program.exitCode(), program.readAllStandardOutput().toStdString(),
                program.readAllStandardError().toStdString()};
    }

    const QTemporaryDir folder;
    const QString site = folder.filePath(QStringLiteral("site.toml"));
    sim::Simulator simulator;
    QProcess host;
    QByteArray output;
};

} // namespace

TEST_F(ModbusProgram, LetsAClientReadAndWriteAController) {
    simulator.memory(1, 5).set(sim::Media::Registers, 10, 70'000);
    writeSite("[modbus]\nlisten = \"127.0.0.1:0\"\nwrites = true\n");
    const std::uint16_t port = startHost();
    EXPECT_TRUE(eventually(
        [&] { return mbpoll(port, words("-t 4:int -r 0")).find("[0]: \t70000\n") != std::string::npos; }));
    EXPECT_THAT(mbpoll(port, words("-t 4:int -r 0"), words("-- -41")), HasSubstr("Written 1 references."));
    EXPECT_EQ(static_cast<std::int32_t>(simulator.memory(1, 5).get(sim::Media::Registers, 10)), -41);
    EXPECT_THAT(mbpoll(port, words("-t 0 -r 0"), words("1")), HasSubstr("Written 1 references."));
    EXPECT_EQ(simulator.memory(1, 5).get(sim::Media::Outputs, 32), 1U);
    EXPECT_TRUE(
        eventually([&] { return mbpoll(port, words("-t 1 -r 0")).find("[0]: \t1\n") != std::string::npos; }));
}

TEST_F(ModbusProgram, TellsAClientThatAControllerIsSilent) {
    writeSite("[modbus]\nlisten = \"127.0.0.1:0\"\nwrites = true\n");
    const std::uint16_t port = startHost();
    EXPECT_TRUE(eventually(
        [&] { return mbpoll(port, words("-t 4:int -r 0")).find("[0]: \t0\n") != std::string::npos; }));
    simulator.silence(1, 5, true);
    EXPECT_TRUE(eventually([&] {
        return mbpoll(port, words("-t 4:int -r 0")).find("Target device failed to respond") !=
               std::string::npos;
    }));
    // The only station of its line: once it has been silent for long enough, the line counts as down.
    EXPECT_THAT(mbpoll(port, words("-t 4:int -r 0"), words("7")),
                AnyOf(HasSubstr("Target device failed to respond"), HasSubstr("Gateway path unavailable")));
}

TEST_F(ModbusProgram, TellsItsMapToPeopleAndPrograms) {
    writeSite("[modbus]\nlisten = \"127.0.0.1:1502\"\n");
    const Ending table = check("--modbus-map");
    EXPECT_EQ(table.status, 0) << table.errors;
    EXPECT_THAT(table.output, HasSubstr("any   holding register  0        400001     2      int32   read    "
                                        "waterworks  pump-house  2   LEVEL\n"));
    const Ending csv = check("--modbus-map --format csv");
    EXPECT_EQ(csv.status, 0) << csv.errors;
    EXPECT_EQ(csv.output,
              "unit,table,address,reference,count,format,access,quality,channel,rtu,id,name,value_unit\n"
              "any,discrete input,0,100001,1,bit,read,,waterworks,pump-house,1,P1_START,\n"
              "any,coil,0,000001,1,bit,read,,waterworks,pump-house,1,P1_START,\n"
              "any,input register,0,300001,2,int32,read,,waterworks,pump-house,2,LEVEL,\n"
              "any,holding register,0,400001,2,int32,read,,waterworks,pump-house,2,LEVEL,\n");
}

TEST_F(ModbusProgram, HasNoMapWithoutAServer) {
    writeSite("");
    const Ending ending = check("--modbus-map");
    EXPECT_EQ(ending.status, 2);
    EXPECT_THAT(ending.errors, HasSubstr("the site has no Modbus server; add a table [modbus] to its file"));
}

TEST_F(ModbusProgram, IsCheckedBeforeItRuns) {
    writeSite("[modbus]\nlisten = \"0.0.0.0:1502\"\nblock = 1\n");
    QProcess program;
    program.start(QStringLiteral(HOST_PROGRAM), {QStringLiteral("check"), site});
    EXPECT_TRUE(program.waitForFinished(patienceMs));
    EXPECT_EQ(program.exitCode(), 2);
    const std::string errors = program.readAllStandardError().toStdString();
    EXPECT_THAT(errors, HasSubstr("warning: whoever reaches 0.0.0.0:1502 can read every value of the map"));
    EXPECT_THAT(errors,
                HasSubstr("error: RTU 1 \"pump-house\" has 1 analog point, for which [modbus] has a block "
                          "of 1 registers"));
}
