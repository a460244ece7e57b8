#pragma once

#include <QByteArray>
#include <QJsonValue>

#include <string>
#include <variant>
#include <vector>

// The requests that a control client may make, one JSON object a line. docs/control-socket.md shows them all.
namespace host {

struct PointValue {
    std::string point; // "rtu/point" or "channel/rtu/point"
    double value = 0;
};

struct WriteRequest {
    std::vector<PointValue> values; // carried out in this order for each RTU
};

// "rtu" or "channel/rtu"; none: all.
using RtuNames = std::vector<std::string>;

struct PollRequest {
    RtuNames rtus;
};

struct TimeSyncRequest {
    RtuNames rtus;
};

struct StatusRequest {};

struct WatchRequest {
    RtuNames rtus;
};

struct TraceRequest {
    std::vector<std::string> channels; // by name; none: all
};

using RequestAction =
    std::variant<WriteRequest, PollRequest, TimeSyncRequest, StatusRequest, WatchRequest, TraceRequest>;

struct Request {
    QJsonValue id = QJsonValue::Undefined; // repeated in the reply, if there is one
    RequestAction action;
};

// A line that is no request.
struct BadRequest {
    QJsonValue id = QJsonValue::Undefined; // as far as it could be read
    std::string fault;
};

constexpr int longestRequestLine = 64 * 1024; // bytes, without the line end
constexpr int mostWriteValues = 500;          // of one request; an RTU's queue takes 1,000 commands
constexpr int mostNames = 500;                // of RTUs or channels in one request

std::variant<Request, BadRequest> parseRequest(const QByteArray& line);
// Without the line end.
QByteArray requestLine(const Request& request);

} // namespace host
