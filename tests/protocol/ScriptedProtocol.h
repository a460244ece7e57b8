#pragma once

#include <SBusProtocolBase.h>

#include <QStringList>

#include <deque>
#include <functional>
#include <optional>

// The engine over a wire of the test's making: it keeps each step that the engine takes, and gives each
// exchange the outcome that the test has put in; without one an exchange is good and leaves the response
// as it came.
class ScriptedProtocol : public SBusProtocolBase {
public:
    using SBusProtocolBase::SBusProtocolBase;

    using SBusProtocolBase::containsRequest;
    using SBusProtocolBase::executeRequest;
    using SBusProtocolBase::logFrame;
    using SBusProtocolBase::removeRequest;
    using SBusProtocolBase::reportResult;

    struct Outcome {
        unsigned code = SBusSuccess;
        std::optional<QByteArray> response;
    };

    void answer(const QByteArray& response) { outcomes.push_back({SBusSuccess, response}); }
    void failWith(unsigned code) { outcomes.push_back({code, std::nullopt}); }
    void succeed() { outcomes.push_back({}); }

    unsigned checkResponse(const QByteArray& frame, const QByteArray& response, const SBusRequest& request,
                           const SBusRequestItem& item) override {
        steps << QStringLiteral("check %1 %2 %3 %4")
                     .arg(QString::fromLatin1(frame), QString::fromLatin1(response.toHex()), request.name)
                     .arg(item.command);
        return checkResult;
    }

    void buildReadFrame(QByteArray& frame, const SBusRequestItem& item, int station) override {
        frame = QStringLiteral("r%1@%2").arg(item.command).arg(item.address).toLatin1();
        steps << QStringLiteral("build %1 station %2").arg(QString::fromLatin1(frame)).arg(station);
    }

    void buildWriteFrame(QByteArray& frame, const SBusRequestItem& item, int station) override {
        frame = QStringLiteral("w%1@%2").arg(item.command).arg(item.address).toLatin1();
        steps << QStringLiteral("build %1 station %2").arg(QString::fromLatin1(frame)).arg(station);
    }

    unsigned reservedHook() override {
        steps << QStringLiteral("reserved");
        return 0;
    }

    unsigned transceive(const SBusRequestItem&, const QByteArray& frame, QByteArray& response,
                        const SBusRequest& request, bool read) override {
        steps << QStringLiteral("exchange %1 %2 %3")
                     .arg(QString::fromLatin1(frame), read ? QStringLiteral("read") : QStringLiteral("write"))
                     .arg(response.size());
        responsesIn << response;
        exchanged << request.name;
        duringExchange();
        if (outcomes.empty())
            return SBusSuccess;
        const Outcome outcome = outcomes.front();
        outcomes.pop_front();
        if (outcome.response)
            response = *outcome.response;
        return outcome.code;
    }

    // "build r6@10 station 5", "exchange r6@10 read 10", "check r6@10 <response in hex> <name> 6".
    QStringList steps;
    QStringList exchanged; // the request's name, once an exchange
    QList<QByteArray> responsesIn;
    unsigned checkResult = SBusSuccess;
    std::function<void()> duringExchange = [] {};

private:
    std::deque<Outcome> outcomes;
};
