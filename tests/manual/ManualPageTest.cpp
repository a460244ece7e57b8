#include "ProgramHelp.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

// Whatever a program's help names, its man page tells of.

namespace {

// The page's source with the formatter's escapes taken out of the words.
QString readPage(const char* path) {
    QFile file(QString::fromUtf8(path));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
    return QString::fromUtf8(file.readAll()).replace(QStringLiteral("\\-"), QStringLiteral("-"));
}

bool names(const QString& text, const QString& word) {
    return text.contains(QRegularExpression(QStringLiteral("(?<![\\w-])%1(?![\\w-])").arg(word)));
}

// What the page says below those headings that name the command; the whole page for the program itself.
QString partAbout(const QString& page, const QStringList& commandPath) {
    if (commandPath.isEmpty())
        return page;
    static const QRegularExpression heading(QStringLiteral("^\\.S[SH] +"),
                                            QRegularExpression::MultilineOption);
    QString part;
    for (const QString& section : page.split(heading))
        if (names(section.section(QLatin1Char('\n'), 0, 0), commandPath.first()))
            part += section;
    return part;
}

void expectTold(const QString& page, const CommandHelp& help) {
    const std::string command = help.path.join(QLatin1Char(' ')).toStdString();
    const QString part = partAbout(page, help.path);
    EXPECT_FALSE(part.isEmpty()) << command;
    for (const QString& subCommand : help.subCommands)
        EXPECT_TRUE(names(part, subCommand)) << command << ": " << subCommand.toStdString();
    for (auto option = help.options.cbegin(); option != help.options.cend(); ++option) {
        const QString& where = option.key() == QStringLiteral("--help") ? page : part;
        EXPECT_TRUE(names(where, option.key())) << command << ": " << option.key().toStdString();
        for (const QString& choice : option.value())
            EXPECT_TRUE(names(part, choice))
                << command << ": " << option.key().toStdString() << " " << choice.toStdString();
    }
}

} // namespace

TEST(HostManual, TellsOfEverySubCommandAndOption) {
    const QString page = readPage(HOST_MANUAL);
    const QList<CommandHelp> all = helpOf(QStringLiteral(HOST_PROGRAM));
    ASSERT_TRUE(all[0].subCommands.contains(QStringLiteral("run"))) << "the help was not understood";
    for (const CommandHelp& help : all)
        expectTold(page, help);
}

TEST(SimulatorManual, TellsOfEveryOption) {
    const QList<CommandHelp> all = helpOf(QStringLiteral(SIMULATOR_PROGRAM));
    ASSERT_TRUE(all[0].options.contains(QStringLiteral("--set"))) << "the help was not understood";
    expectTold(readPage(SIMULATOR_MANUAL), all[0]);
}
