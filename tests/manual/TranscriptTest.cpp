#include "Page.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUdpSocket>

#include <gtest/gtest.h>

// What a page of the documentation shows is what the programs say: its files are written, its commands run
// one after the other, and their outputs compared with those that it shows.

namespace {

constexpr int patienceMs = 60'000;

class Transcripts : public testing::Test {
protected:
    ~Transcripts() override {
        for (const auto& one : background) {
            one->terminate();
            one->waitForFinished(patienceMs);
        }
    }

    void follow(const char* page) {
        const std::vector<PageBlock> blocks = readPage(QString::fromUtf8(page));
        int commands = 0;
        for (const PageBlock& block : blocks)
            if (!block.fileName.isEmpty())
                write(block.fileName, block.text);
            else
                for (const PageCommand& command : commandsOf(block)) {
                    EXPECT_EQ(masked(outputOf(command)), masked(command.output))
                        << command.line.toStdString();
                    ++commands;
                }
        EXPECT_GT(commands, 0) << "the page was not understood";
    }

private:
    static quint16 freePort() {
        QUdpSocket socket;
        EXPECT_TRUE(socket.bind(QHostAddress(QHostAddress::LocalHost)));
        return socket.localPort();
    }

    // The page's port may be in use here.
    QString here(QString text) const { return text.replace(QStringLiteral("127.0.0.1:5050"), address); }

    void write(const QString& name, const QString& text) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(here(text).toUtf8());
    }

    void prepare(QProcess& shell) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("PATH"),
                           QStringLiteral(PROGRAM_FOLDER ":") + environment.value(QStringLiteral("PATH")));
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder.path());
        shell.setProcessEnvironment(environment);
        shell.setWorkingDirectory(folder.path());
        shell.setProcessChannelMode(QProcess::MergedChannels);
    }

    QString outputOf(const PageCommand& command) {
        auto shell = std::make_unique<QProcess>();
        prepare(*shell);
        const bool staysBehind = command.line.endsWith(QStringLiteral(" &"));
        const QString line = staysBehind ? QStringLiteral("exec ") + command.line.chopped(2) : command.line;
        shell->start(QStringLiteral("bash"), {QStringLiteral("-c"), line});
        if (!staysBehind) {
            EXPECT_TRUE(shell->waitForFinished(patienceMs)) << command.line.toStdString();
            return QString::fromUtf8(shell->readAll());
        }
        QString output; // until it is ready for the commands that follow
        while (!output.endsWith(QStringLiteral("ready\n")) && shell->waitForReadyRead(patienceMs))
            output += QString::fromUtf8(shell->readAll());
        background.push_back(std::move(shell));
        return output;
    }

    // Times differ from run to run.
    std::string masked(QString text) const {
        static const QRegularExpression time(
            QStringLiteral("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z"));
        return here(std::move(text)).replace(time, QStringLiteral("TIME")).toStdString();
    }

    const QTemporaryDir folder;
    const QString address = QStringLiteral("127.0.0.1:") + QString::number(freePort());
    std::vector<std::unique_ptr<QProcess>> background;
};

} // namespace

TEST_F(Transcripts, FromASpreadsheetToValues) {
    follow(DOCUMENTS "/from-a-spreadsheet.md");
}
