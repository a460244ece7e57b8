#pragma once

#include "runtime/ExitStatus.h"

#include <QJsonObject>

#include <string>

// What a control client shows of the replies, and makes of them.
namespace host {

// Of a write, a time synchronisation or a poll: a line for each point or RTU.
std::string resultsText(const QJsonObject& reply);
// A small table for each channel.
std::string statusText(const QJsonObject& reply);
// "2026-11-21 10:30:00.125  pump-house/P1_RUN (O32) = 1  good"
std::string changeText(const QJsonObject& change);

// Good when all of it succeeded, SomeElements when some of it did; else Refused when all of it was refused,
// by a controller or by the host, and CommunicationFailed otherwise. Configuration for what the host cannot
// understand.
ExitStatus judgeReply(const QJsonObject& reply);

} // namespace host
