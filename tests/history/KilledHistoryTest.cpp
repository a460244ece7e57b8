// The host as a program that is killed at any moment while it records. What it has shown until then is what
// its history has to hold, but for the last second.

#include "Eventually.h"
#include "HistoryRows.h"
#include "Soak.h"

#include <Simulator.h>

#include <QDateTime>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

using namespace soak;

namespace {

constexpr int patienceMs = 60'000;
constexpr int lineId = 1;
constexpr int station = 5;
constexpr unsigned counter = 7; // the register that counts
constexpr int longestLifeMs = 1'500;
// Transactions are a second apart; the rest is for a computer that has much else to do.
constexpr std::int64_t mostMissingMs = 5'000;

class KilledHistory : public testing::Test {
protected:
    KilledHistory() {
        EXPECT_EQ(simulator.start(), "");
        QFile site(sitePath);
        EXPECT_TRUE(site.open(QIODevice::WriteOnly));
        site.write("[[channel]]\nid = 1\ntype = \"SBus-Ethernet\"\nprimary = \"udp://127.0.0.1:" +
                   QByteArray::number(simulator.port(lineId)) +
                   "\"\n[[channel.rtu]]\nid = 1\nname = \"pump-house\"\nstation = 5\n"
                   "scan = { analog = \"20ms\" }\n"
                   "[[channel.rtu.point]]\nid = 1\nname = \"COUNT\"\nkind = \"analog\"\naddress = \"R7\"\n"
                   "[history]\nurl = \"sqlite:history.db\"\n");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_STATE_HOME"), folder.path());
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        mover = std::thread([this] {
            while (isMoving) {
                simulator.memory(lineId, station).set(sim::Media::Registers, counter, ++moves);
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        });
    }

    ~KilledHistory() override {
        program.kill();
        program.waitForFinished(patienceMs);
        isMoving = false;
        mover.join();
    }

    void readOutput() {
        while (program.canReadLine()) {
            const QJsonObject line = QJsonDocument::fromJson(program.readLine()).object();
            const QDateTime time =
                QDateTime::fromString(line[QStringLiteral("time")].toString(), Qt::ISODateWithMs);
            if (time.isValid())
                shown.push_back(
                    {time.toMSecsSinceEpoch(), PointQuality::Good, line[QStringLiteral("value")].toDouble()});
        }
    }

    // Returns what it has shown.
    void liveFor(int milliseconds) {
        shown.clear();
        program.start(QStringLiteral(HOST_PROGRAM),
                      {QStringLiteral("run"), sitePath, QStringLiteral("--format"), QStringLiteral("json"),
                       QStringLiteral("--no-control")});
        ASSERT_TRUE(program.waitForStarted(patienceMs));
        ASSERT_TRUE(eventually([this] {
            program.waitForReadyRead(1);
            readOutput();
            return !shown.empty();
        }));
        const std::int64_t begin = shown.front().timeMs;
        ASSERT_TRUE(eventually([&] {
            program.waitForReadyRead(1);
            readOutput();
            return QDateTime::currentMSecsSinceEpoch() >= begin + milliseconds;
        }));
        program.kill();
        ASSERT_TRUE(program.waitForFinished(patienceMs));
        readOutput();
    }

    // Since its first value was shown.
    std::vector<host::RecordedRow> recorded() const {
        host::HistoryReader reader(file);
        std::vector<host::RecordedRow> rows;
        for (const host::HistoryReader::NamedPoint& point : reader.find("pump-house/COUNT"))
            reader.read(point.number, shown.front().timeMs, forEver, [&](const host::RecordedRow& row) {
                if (row.timeMs >= shown.front().timeMs)
                    rows.push_back(row);
            });
        return rows;
    }

    void expectRecorded() {
        const std::vector<host::RecordedRow> rows = recorded();
        for (std::size_t i = 0; i < std::min(rows.size(), shown.size()); ++i)
            ASSERT_EQ(rowText(rows[i], 0), rowText(shown[i], 0)) << i;
        const std::int64_t until = rows.empty() ? shown.front().timeMs : rows.back().timeMs;
        const std::int64_t missing = std::max<std::int64_t>(0, shown.back().timeMs - until);
        EXPECT_LE(missing, mostMissingMs);
        longestMissing = std::max(longestMissing, missing);
        for (const host::RecordedRow& row : rows)
            all.push_back(rowText(row, 0));
    }

    void expectSound() const {
        SQLite::Database database(file, SQLite::OPEN_READWRITE);
        EXPECT_EQ(database.execAndGet("PRAGMA integrity_check").getString(), "ok");
    }

    const QTemporaryDir folder;
    const QString sitePath = folder.filePath(QStringLiteral("site.toml"));
    const std::string file = folder.filePath(QStringLiteral("history.db")).toStdString();
    sim::Simulator simulator{{{sim::udpLine(lineId, {station})}}};
    QProcess program;
    std::vector<host::RecordedRow> shown; // by the host that ran last
    Rows all;                             // that were found in the file
    std::int64_t longestMissing = 0;
    std::atomic<bool> isMoving{true};
    unsigned moves = 0;
    std::thread mover;
};

} // namespace

TEST_F(KilledHistory, MissesNoMoreThanTheLastSecondAndDoublesNothing) {
    std::mt19937 chance(1);
    const int times = soak::count(20, 200);
    for (int i = 0; i < times && !HasFatalFailure(); ++i) {
        liveFor(static_cast<int>(chance() % longestLifeMs));
        if (HasFatalFailure())
            return;
        expectRecorded();
        expectSound();
    }
    EXPECT_EQ(recordedRows(file, "COUNT", 0), all) << "what was there stays there, once";
    tellFigures("killed " + std::to_string(times) + " times, " + std::to_string(all.size()) +
                " rows, at most " + std::to_string(longestMissing) + " ms missing");
}
