#include "ProgramHelp.h"

#include <QProcess>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

CommandHelp readHelp(const QStringList& path, const QString& text) {
    static const QRegularExpression subCommand(QStringLiteral("^  ([a-z][a-z-]*)( |$)"));
    static const QRegularExpression option(
        QStringLiteral("^ +(?:-\\w, *)?(--[a-z][a-z-]*)(?: [A-Z]\\w*:\\{([^}]*)\\})?"));
    CommandHelp help{path, {}, {}};
    bool amongSubCommands = false;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        if (!line.startsWith(QLatin1Char(' ')))
            amongSubCommands = line.compare(QStringLiteral("Subcommands:"), Qt::CaseInsensitive) == 0;
        const auto command = subCommand.match(line);
        if (amongSubCommands && command.hasMatch())
            help.subCommands << command.captured(1);
        const auto named = option.match(line);
        if (named.hasMatch())
            help.options[named.captured(1)] = named.captured(2).split(QLatin1Char(','), Qt::SkipEmptyParts);
    }
    return help;
}

void collect(const QString& program, const QStringList& path, QList<CommandHelp>& all) {
    QProcess process;
    process.start(program, path + QStringList{QStringLiteral("--help")});
    EXPECT_TRUE(process.waitForFinished(60'000));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    const CommandHelp help = readHelp(path, QString::fromUtf8(process.readAllStandardOutput()));
    all << help;
    for (const QString& subCommand : help.subCommands)
        collect(program, path + QStringList{subCommand}, all);
}

} // namespace

QList<CommandHelp> helpOf(const QString& program) {
    QList<CommandHelp> all;
    collect(program, {}, all);
    return all;
}
