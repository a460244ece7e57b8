#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// Symbol lists made into point tables, as users do it.

using testing::HasSubstr;

namespace {

struct Ending {
    int status = -1;
    std::string output;
    std::string errors;
};

class ImportProgram : public testing::Test {
protected:
    void write(const char* name, const QByteArray& contents) {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }

    QByteArray contentsOf(const char* name) {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }

    Ending run(const char* arguments) {
        QProcess program;
        program.setWorkingDirectory(folder.path());
        program.start(QStringLiteral(HOST_PROGRAM), QString::fromLatin1(arguments).split(QLatin1Char(' ')));
        EXPECT_TRUE(program.waitForFinished(60'000)) << program.errorString().toStdString();
        return {program.exitCode(), program.readAllStandardOutput().toStdString(),
                program.readAllStandardError().toStdString()};
    }

    const QTemporaryDir folder;
};

} // namespace

TEST_F(ImportProgram, WritesAPointTableThatCheckAccepts) {
    write("a.csv", "Symbol;Typ;Adresse;Kommentar\nPlant.Pump1.Run;Ausgang;32;\"l\xE4uft, \"\"links\"\"\"\n"
                   "Plant.Levels;R FLOAT;300..309;\nPlant.Text;TEXT;1;\n");
    write("b.csv", "Name\tAddress\nDoor\tI 0\nDelay\tT 5\n");
    const Ending import = run("import a.csv b.csv -o points.csv");
    EXPECT_EQ(import.status, 0);
    EXPECT_EQ(import.output, "points.csv: 13 points, 1 symbol left out\n");
    EXPECT_THAT(import.errors, HasSubstr("a.csv:4: left out \"Plant.Text\": kind \"TEXT\" is not polled\n"));
    EXPECT_THAT(import.errors, HasSubstr("a.csv:2:30: note: read as Windows-1252"));
    write("site.toml", "[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://127.0.0.1:9\"\n"
                       "[[channel.rtu]]\nid = 1\nstation = 1\npoints = \"points.csv\"\n");
    const Ending check = run("check site.toml");
    EXPECT_EQ(check.status, 0) << contentsOf("points.csv").toStdString();
    EXPECT_EQ(check.errors, "");
    EXPECT_THAT(check.output, HasSubstr("2 status points, 11 analog points"));
}

TEST_F(ImportProgram, LeavesAFileThatIsThereAloneUnlessItIsForced) {
    write("a.csv", "Symbol,Address\nA,R 5\n");
    write("points.csv", "precious");
    const Ending refused = run("import a.csv -o points.csv");
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.errors, HasSubstr("points.csv is there already"));
    EXPECT_EQ(contentsOf("points.csv"), "precious");
    EXPECT_EQ(run("import a.csv -o points.csv --force").status, 0);
    EXPECT_EQ(contentsOf("points.csv"), "id,name,kind,address,format,description\n1,A,analog,R5,,\n");
    EXPECT_EQ(run("import a.csv -o a.csv --force").status, 2);
}

TEST_F(ImportProgram, WritesNothingWhereNothingCouldBeTaken) {
    write("a.csv", "Symbol,Type,Address\nA,TEXT,5\n");
    const Ending ending = run("import a.csv -o points.csv");
    EXPECT_EQ(ending.status, 2);
    EXPECT_THAT(ending.errors, HasSubstr("no symbol could be taken"));
    EXPECT_EQ(contentsOf("points.csv"), "(none)");
    EXPECT_EQ(run("import none.csv -o points.csv").status, 2);
    EXPECT_EQ(run("import a.csv -o points.csv --columns here").status, 2);
}
