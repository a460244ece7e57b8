#include "ProgramHelp.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

namespace {

// Calls the completion as readline does: with the words of the line, the last of which is being typed. A lone
// colon or equals sign is a word to readline, and what is typed behind it begins empty.
const QString caller = QStringLiteral(R"(source "$1" || exit
program=$2
shift 2
COMP_WORDS=("$program" "$@")
COMP_CWORD=$#
current=${COMP_WORDS[COMP_CWORD]}
[[ $current == [:=] ]] && current=
_sbus_host "$program" "$current" "${COMP_WORDS[COMP_CWORD - 1]}"
for reply in "${COMPREPLY[@]}"; do printf '%s\n' "$reply"; done
)");

using Words = std::vector<std::string>;

class Completion : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(QDir(directory.path()).mkdir(QStringLiteral("old logs")));
        for (const char* const name : {"site.toml", "notes.txt"})
            ASSERT_TRUE(QFile(directory.filePath(QString::fromLatin1(name))).open(QIODevice::WriteOnly));
    }

    Words bash(const QStringList& arguments) {
        QProcess shell;
        shell.setWorkingDirectory(directory.path());
        shell.start(QStringLiteral("bash"), QStringList{QStringLiteral("--norc")} + arguments);
        EXPECT_TRUE(shell.waitForFinished(60'000));
        EXPECT_EQ(shell.readAllStandardError().toStdString(), "") << "would spoil the user's line";
        Words lines;
        for (const QByteArray& line : shell.readAllStandardOutput().split('\n'))
            if (!line.isEmpty())
                lines.push_back(line.toStdString());
        return lines;
    }

    Words offersFor(const QStringList& words) {
        return bash(QStringList{QStringLiteral("-c"), caller, QStringLiteral("bash"),
                                QStringLiteral(HOST_COMPLETION), program} +
                    words);
    }

    // The words as readline splits them, the last one perhaps empty.
    Words offersFor(const char* words) {
        return offersFor(QString::fromLatin1(words).split(QLatin1Char(' ')));
    }

    const QTemporaryDir directory;
    QString program = QStringLiteral(HOST_PROGRAM);
};

// A program that has what the places of links and actions need.
class CompletionOfPlaces : public Completion {
protected:
    void SetUp() override {
        Completion::SetUp();
        program = directory.filePath(QStringLiteral("stand-in"));
        QFile file(program);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(R"(#!/usr/bin/env bash
case $1 in
--help)
    echo 'Subcommands:'
    echo '  read                        Read elements'
    echo '  write                       Write elements,'
    echo '                              one by one'
    echo '  time-sync                   Set the clock'
    echo '  ctl                         Command a running host'
    ;;
*)
    echo 'Options:'
    echo '  -h,--help                   Print this help message and exit'
    echo '  --station UINT              Station number'
    echo '  --mode MODE:{data,break}    How telegrams are framed'
    echo '  --control TEXT              Socket'
    echo '  --verify                    Read back, as without --dry-run'
    ;;
esac
)");
        file.close();
        ASSERT_TRUE(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
};

Words toWords(const QStringList& texts) {
    Words words;
    for (const QString& text : texts)
        words.push_back(text.toStdString());
    return words;
}

} // namespace

TEST_F(Completion, IsRegisteredForTheProgram) {
    EXPECT_THAT(bash({QStringLiteral("-c"), QStringLiteral("source \"$0\"; complete -p sbus-host"),
                      QStringLiteral(HOST_COMPLETION)}),
                testing::ElementsAre("complete -F _sbus_host sbus-host"));
}

TEST_F(Completion, OffersEverySubCommandAndOptionOfTheHelp) {
    const QList<CommandHelp> all = helpOf(program);
    ASSERT_TRUE(all[0].subCommands.contains(QStringLiteral("run"))) << "the help was not understood";
    EXPECT_THAT(offersFor(""), UnorderedElementsAreArray(toWords(all[0].subCommands)));
    for (const CommandHelp& help : all)
        EXPECT_THAT(offersFor(help.path + QStringList{QStringLiteral("--")}),
                    UnorderedElementsAreArray(toWords(help.options.keys())))
            << help.path.join(QLatin1Char(' ')).toStdString();
}

TEST_F(Completion, CompletesASubCommand) {
    EXPECT_THAT(offersFor("ru"), UnorderedElementsAre("run"));
    EXPECT_THAT(offersFor("fly"), IsEmpty());
}

TEST_F(Completion, CompletesAnOption) {
    EXPECT_THAT(offersFor("run --fr"), UnorderedElementsAre("--frames"));
    EXPECT_THAT(offersFor("run site.toml --fo"), UnorderedElementsAre("--for", "--format"));
}

TEST_F(Completion, CompletesAFormat) {
    EXPECT_THAT(offersFor("run --format "), UnorderedElementsAre("table", "lines", "json", "csv"));
    EXPECT_THAT(offersFor("run --format j"), UnorderedElementsAre("json"));
    EXPECT_THAT(offersFor("run --format ="), UnorderedElementsAre("table", "lines", "json", "csv"));
    EXPECT_THAT(offersFor("run --format = j"), UnorderedElementsAre("json"));
}

TEST_F(Completion, CompletesASiteFileOrTheDirectoriesOnTheWayToIt) {
    for (const char* const words : {"run ", "check ", "run --for 10s ", "run --for = 10s ", "run --frames "})
        EXPECT_THAT(offersFor(words), UnorderedElementsAre("site.toml", "old logs")) << words;
    EXPECT_THAT(offersFor("check s"), UnorderedElementsAre("site.toml"));
    EXPECT_THAT(offersFor("check site.toml "), IsEmpty());
}

TEST_F(Completion, OffersDirectoriesForLogsAndFilesForAPlugin) {
    EXPECT_THAT(offersFor("run --log-dir "), UnorderedElementsAre("old logs"));
    EXPECT_THAT(offersFor("run --plugin n"), UnorderedElementsAre("notes.txt"));
    EXPECT_THAT(offersFor("run --plugin = n"), UnorderedElementsAre("notes.txt"));
}

TEST_F(Completion, OffersFilesForACaptureAndNothingForItsSize) {
    for (const char* const words : {"run --capture n", "read udp : //10.0.0.5 --capture n"})
        EXPECT_THAT(offersFor(words), UnorderedElementsAre("notes.txt")) << words;
    EXPECT_THAT(offersFor("run --capture-size "), IsEmpty());
}

TEST_F(Completion, OffersFilesToImportFromAndTo) {
    for (const char* const words : {"import n", "import site.toml n", "import site.toml --output n"})
        EXPECT_THAT(offersFor(words), UnorderedElementsAre("notes.txt")) << words;
}

TEST_F(Completion, OffersNothingForATime) {
    EXPECT_THAT(offersFor("run --for "), IsEmpty());
}

TEST_F(Completion, IsSilentWhereTheProgramDoesNotRun) {
    program = directory.filePath(QStringLiteral("no-such-program"));
    EXPECT_THAT(offersFor(""), IsEmpty());
    EXPECT_THAT(offersFor("run --"), IsEmpty());
}

TEST_F(CompletionOfPlaces, TakesOnlyTheNamesOutOfTheHelp) {
    EXPECT_THAT(offersFor(""), UnorderedElementsAre("read", "write", "time-sync", "ctl"));
    EXPECT_THAT(offersFor("write --"),
                UnorderedElementsAre("--help", "--station", "--mode", "--control", "--verify"));
}

TEST_F(CompletionOfPlaces, OffersTheKindsOfLink) {
    for (const char* const words : {"read ", "write ", "time-sync ", "read --station 5 ", "read --verify "})
        EXPECT_THAT(offersFor(words), UnorderedElementsAre("udp://", "serial:")) << words;
    EXPECT_THAT(offersFor("read s"), UnorderedElementsAre("serial:"));
}

TEST_F(CompletionOfPlaces, CompletesTheDeviceOfASerialLine) {
    EXPECT_THAT(offersFor("read serial : n"), UnorderedElementsAre("notes.txt"));
    EXPECT_THAT(offersFor("read udp : //n"), IsEmpty());
}

TEST_F(CompletionOfPlaces, OffersNoSecondLink) {
    EXPECT_THAT(offersFor("read udp : //10.0.0.5 : 5050 "), IsEmpty());
    EXPECT_THAT(offersFor("write udp : //10.0.0.5 R30 : float = 1.5 --v"), UnorderedElementsAre("--verify"));
}

TEST_F(CompletionOfPlaces, OffersTheChoicesOfAnOption) {
    EXPECT_THAT(offersFor("read --mode "), UnorderedElementsAre("data", "break"));
    EXPECT_THAT(offersFor("read udp : //10.0.0.5 --mode b"), UnorderedElementsAre("break"));
}

TEST_F(CompletionOfPlaces, OffersTheActionsForARunningHost) {
    EXPECT_THAT(offersFor("ctl "), UnorderedElementsAre("site.toml", "old logs"));
    EXPECT_THAT(offersFor("ctl site.toml "),
                UnorderedElementsAre("write", "poll", "time-sync", "status", "watch", "trace"));
    EXPECT_THAT(offersFor("ctl --control notes.txt site.toml st"), UnorderedElementsAre("status"));
}
