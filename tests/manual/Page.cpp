#include "Page.h"

#include <QFile>

#include <gtest/gtest.h>

namespace {

const QString fence = QStringLiteral("```");

} // namespace

std::vector<PageBlock> readPage(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    std::vector<PageBlock> blocks;
    bool isInside = false;
    bool isTaken = false;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
        if (line.startsWith(fence)) {
            isInside = !isInside;
            const QString fileName = line.section(QLatin1Char(' '), 1);
            isTaken = isInside && (!fileName.isEmpty() || line == fence + QStringLiteral("console"));
            if (isTaken)
                blocks.push_back({fileName, {}});
        } else if (isTaken) {
            blocks.back().text += line + QLatin1Char('\n');
        }
    }
    return blocks;
}

std::vector<PageCommand> commandsOf(const PageBlock& transcript) {
    const QString prompt = QStringLiteral("$ ");
    std::vector<PageCommand> commands;
    for (const QString& line : transcript.text.split(QLatin1Char('\n'))) {
        if (line.startsWith(prompt))
            commands.push_back({line.mid(prompt.size()), {}});
        else if (!commands.empty() && !line.isEmpty())
            commands.back().output += line + QLatin1Char('\n');
    }
    return commands;
}
