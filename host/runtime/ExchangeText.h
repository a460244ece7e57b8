#pragma once

#include "site/Site.h"
#include "telegram/Exchange.h"

#include <QJsonObject>

#include <cstdint>
#include <string>
#include <vector>

namespace host {

// An exchange for programs: time (UTC), channel, end ("primary", "secondary"), station, request and answer in
// words, meaning of the answer ("good", "refused", "damaged", "silent", "foreign"), round_trip_ms (null when
// nothing came), line_failed, and as hex sent, received and discarded (thrown away unread before the send).
QJsonObject exchangeAsJson(const Site& site, const Exchange& exchange);

// One way of an exchange, for people.
struct TelegramLine {
    std::int64_t timeMs = 0; // since 1970
    std::string text;        // "waterworks, station 5  << read 2 registers from R10"
    std::string hex;         // empty when nothing came
};
// What was thrown away unread, where there was something; what was sent; and what came. Nothing is shown as
// received that did not come.
std::vector<TelegramLine> telegramsOf(const QJsonObject& exchange);

// The same as lines:
//
//     2026-11-22 09:30:00.125+01:00  waterworks, station 5  << read 2 registers from R10
//         00 00 00 10 01 00 00 07 00 05 06 01 00 0A 2F 5E
//     2026-11-22 09:30:00.126+01:00  waterworks, station 5  >> 2 registers from R10: 12, 13 (0.32 ms)
//         00 00 00 13 01 00 00 07 01 00 00 00 0C 00 00 00 0D 5E 11
std::vector<std::string> exchangeLines(const QJsonObject& exchange);

} // namespace host
