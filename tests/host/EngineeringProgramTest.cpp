#include "OneShotProgram.h"

#include <QFile>

// Values with scale, unit and format ieee, from the point table to the controller's registers and back, as
// users of the program meet them.

using sim::Media;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

class EngineeringOnEveryLine : public OneShotOnEveryLine {
protected:
    // A site file for the line, with this point table.
    void writeSite(const QByteArray& points) {
        write("points.csv",
              "id,name,kind,address,format,scale,offset,unit,decimals,deadband,description\n" + points);
        const bool isEthernet = lineFraming == sim::Framing::Ethernet;
        const bool isBreak = lineFraming == sim::Framing::BreakMode;
        write("site.toml",
              QByteArray("[[channel]]\nid = 1\ntype = \"") + (isEthernet ? "SBus-Ethernet" : "SBus-Serial") +
                  "\"\nprimary = \"" + QByteArray::fromStdString(link) +
                  "\"\n[[channel.rtu]]\nid = 1\nname = \"tank\"\nstation = 5\ntimeout = \"2s\"\n" +
                  (isBreak ? "transmit_type = \"break\"\nbreak_delay = 1\n" : "") +
                  "points = \"points.csv\"\n");
    }
    // A command with a site file in place of a line.
    Ending runSite(const QStringList& arguments) {
        QProcess program;
        program.start(QStringLiteral(HOST_PROGRAM), arguments);
        return endOf(program);
    }
    QString site() const { return folder.filePath(QStringLiteral("site.toml")); }
    QString socket() const { return folder.filePath(QStringLiteral("socket")); }

    std::string streamed(const char* format) {
        return runSite({QStringLiteral("run"), site(), QStringLiteral("--for"), QStringLiteral("2s"),
                        QStringLiteral("--no-control"), QStringLiteral("--format"),
                        QString::fromLatin1(format)})
            .output;
    }

private:
    void write(const char* name, const QByteArray& contents) {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Lines, EngineeringOnEveryLine,
                         testing::Values(sim::Framing::Ethernet, sim::Framing::DataMode,
                                         sim::Framing::BreakMode),
                         framingName);

TEST_P(EngineeringOnEveryLine, ValuesOfARunAreScaledAndHaveTheirUnits) {
    memory().set(Media::Registers, 2, 415);
    memory().set(Media::Registers, 30, 0xC148'0000U); // -12.5
    memory().set(Media::Registers, 31, 0x7FC0'0000U); // not a number
    memory().setFloat(Media::Registers, 40, 1.5);
    memory().set(Media::Timers, 5, 123);
    writeSite(
        "1,LEVEL,analog,R2,,0.1,-20,m,2,,Well\n2,POWER,analog,R30,ieee,,,kW,,,\n"
        "3,BROKEN,analog,R31,ieee,,,kW,,,\n4,FLOW,analog,R40,float,2,,,,,\n5,LEFT,analog,T5,,0.1,,s,,,\n");
    EXPECT_THAT(streamed("lines"), AllOf(HasSubstr("tank/LEVEL (R2) = 21.50 m  good\n"),
                                         HasSubstr("tank/POWER (R30) = -12.5 kW  good\n"),
                                         HasSubstr("tank/BROKEN (R31) = NaN kW  bad\n"),
                                         HasSubstr("tank/FLOW (R40) = 3  good\n"),
                                         HasSubstr("tank/LEFT (T5) = 12.3 s  good\n")));
    EXPECT_THAT(streamed("json"),
                AllOf(HasSubstr(R"("value":21.50,"unit":"m","raw":415,"quality":"good"})"),
                      HasSubstr(R"("value":-12.5,"unit":"kW","raw":-1052246016,"quality":"good"})"),
                      HasSubstr(R"("value":null,"unit":"kW","raw":2143289344,"quality":"bad"})"),
                      HasSubstr(R"("value":3,"raw":1.5,"quality":"good"})")));
    EXPECT_THAT(streamed("csv"),
                AllOf(HasSubstr("address,value,quality,unit\n"), HasSubstr(",R2,21.50,good,m\n"),
                      HasSubstr(",R30,-12.5,good,kW\n"), HasSubstr(",R40,3,good,\n")));
}

TEST_P(EngineeringOnEveryLine, ValuesAreCommandedInTheirUnits) {
    writeSite("1,LEVEL,analog,R2,,0.1,-20,m,2,,Well\n2,POWER,analog,R30,ieee,0.001,,MW,,,\n"
              "3,FLOW,analog,R40,float,2,,,,,\n4,LEFT,analog,T5,,0.1,,s,,,\n");
    QProcess host;
    host.start(QStringLiteral(HOST_PROGRAM),
               {QStringLiteral("run"), site(), QStringLiteral("--format"), QStringLiteral("lines"),
                QStringLiteral("--control"), socket()});
    ASSERT_TRUE(host.waitForStarted());
    QByteArray shown;
    const auto awaitShown = [&](const QByteArray& text) {
        while (!shown.contains(text) && host.waitForReadyRead(60'000))
            shown += host.readAllStandardOutput();
        return shown.contains(text);
    };
    const auto write = [this](const char* values) {
        QStringList arguments{QStringLiteral("ctl"), site(), QStringLiteral("--control"), socket(),
                              QStringLiteral("write")};
        return runSite(arguments + QString::fromLatin1(values).split(QLatin1Char(' ')));
    };
    ASSERT_TRUE(awaitShown("tank/LEFT (T5) = 0 s  good\n")) << shown.toStdString();

    const Ending good = write("tank/LEVEL=21.5 tank/POWER=-0.0125 tank/FLOW=3 tank/LEFT=12.3");
    EXPECT_EQ(good.errors, "");
    EXPECT_EQ(good.output,
              "tank/LEVEL = 21.5 m (raw 415)  success\ntank/POWER = -0.0125 MW (raw -1052246016)  "
              "success\ntank/FLOW = 3 (raw 1.5)  success\ntank/LEFT = 12.3 s (raw 123)  success\n");
    EXPECT_EQ(word(Media::Registers, 2), 415U);
    EXPECT_EQ(word(Media::Registers, 30), 0xC148'0000U); // -12.5
    EXPECT_EQ(word(Media::Registers, 40), 0xC000'0041U); // 1.5
    EXPECT_EQ(word(Media::Timers, 5), 123U);
    EXPECT_TRUE(awaitShown("tank/LEVEL (R2) = 21.50 m  good\n"));

    const Ending refused = write("tank/LEVEL=21.57 tank/FLOW=5");
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.output + refused.errors,
                HasSubstr("the value does not fit a register; give 21.5 or 21.6; nothing was written"));
    EXPECT_EQ(word(Media::Registers, 40), 0xC000'0041U);
    interrupt(host);
    EXPECT_EQ(endOf(host).status, 0);
}

TEST_P(EngineeringOnEveryLine, RegistersOfFormatIeeeAreReadAndWrittenWithoutASiteFile) {
    const Ending written =
        run("write LINK R10:ieee=0.1 R11=7 R12:ieee=-0 --verify --station 5 --timeout 10s");
    EXPECT_EQ(written.errors, "");
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.output, "R10:ieee = 0.1\nR11 = 7\nR12:ieee = 0\n");
    EXPECT_EQ(word(Media::Registers, 10), 0x3DCC'CCCDU);
    EXPECT_EQ(word(Media::Registers, 12), 0x8000'0000U);
    memory().set(Media::Registers, 13, 0xFF80'0000U);
    EXPECT_EQ(run("read LINK R10:ieee R10 R13:ieee --station 5 --timeout 10s").output,
              "R10:ieee = 0.1\nR10 = 1036831949\nR13:ieee = -inf\n");
    EXPECT_THAT(run("read LINK R13:ieee --format json --station 5 --timeout 10s").output,
                AllOf(HasSubstr(R"("address":"R13:ieee","value":null,"raw":-8388608,"time":")"),
                      HasSubstr(R"("quality":"bad"})")));
}

TEST_P(EngineeringOnEveryLine, TheCheckTellsWhatBecomesOfRawNumbers) {
    writeSite("1,LEVEL,analog,R2,,0.1,-20,m,2,,Well\n");
    const Ending check = runSite({QStringLiteral("check"), site()});
    EXPECT_EQ(check.status, 0) << check.errors;
    EXPECT_THAT(check.output, HasSubstr("    \"LEVEL\" is R2 x 0.1 - 20 m: 1000 is 80.00 m\n"));
}
