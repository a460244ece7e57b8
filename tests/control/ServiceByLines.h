#pragma once

#include "FakeHost.h"
#include "services/control/ControlService.h"

#include <QDateTime>

#include <gtest/gtest.h>

// The control service without a socket: lines in, lines out.
class ServiceByLines : public testing::Test {
protected:
    std::vector<std::string> ask(const QByteArray& line, host::ClientId client = 1) {
        sent.clear();
        service.handleLine(client, line);
        service.answerFinished();
        return sent[client];
    }

    std::string askOne(const QByteArray& line, host::ClientId client = 1) {
        const auto lines = ask(line, client);
        EXPECT_EQ(lines.size(), 1U) << line.toStdString();
        return lines.empty() ? "" : lines[0];
    }

    void publish(int channelId, int rtuId, unsigned id, double value,
                 PointQuality quality = PointQuality::Good) {
        PointUpdate update;
        update.number = id - 1; // ids go from 1 on without gaps here
        update.value = value;
        update.stamp = CMidTime(QDateTime::fromMSecsSinceEpoch(1'000'000'000'000, Qt::UTC), 0);
        update.quality = quality;
        fake.store.publishPoints(channelId, rtuId, {update});
    }

    std::vector<std::string> changesTold(host::ClientId client) {
        sent.clear();
        service.tellChanges();
        return sent[client];
    }

    host::Site site = controlSite();
    FakeHost fake{site};
    std::map<host::ClientId, std::vector<std::string>> sent;
    int woken = 0;
    host::ControlService::Clock::time_point time;
    host::ControlService service{fake,
                                 fake.store,
                                 {[this](host::ClientId client, const QByteArray& line) {
                                      sent[client].push_back(line.toStdString());
                                  },
                                  [](host::ClientId) { return true; }, [this] { ++woken; },
                                  [this] { return time; }}};
};
