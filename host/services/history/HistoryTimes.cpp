#include "HistoryTimes.h"

#include "site/Duration.h"

#include <QDateTime>

namespace host {

namespace {

constexpr std::int64_t hour = 3'600'000;
constexpr std::int64_t day = 24 * hour;

std::int64_t firstOfTwo(const QDateTime& time, const QTimeZone& zone) {
    const std::int64_t found = time.toMSecsSinceEpoch();
    const QDateTime before = QDateTime::fromMSecsSinceEpoch(found - hour, zone);
    const bool isTheSame = before.date() == time.date() && before.time() == time.time();
    return isTheSame ? found - hour : found;
}

bool hasOffset(const QDateTime& time) {
    return time.timeSpec() != Qt::LocalTime;
}

std::optional<std::int64_t> parseDateTime(const std::string& text, const QTimeZone& zone) {
    QString written = QString::fromStdString(text);
    if (written.size() == 10) // the date alone
        written += QStringLiteral("T00:00");
    if (written.size() < 16 || (written[10] != QLatin1Char(' ') && written[10] != QLatin1Char('T')))
        return std::nullopt;
    written[10] = QLatin1Char('T');
    const QDateTime time = QDateTime::fromString(written, Qt::ISODateWithMs);
    if (!time.date().isValid() || !time.time().isValid())
        return std::nullopt;
    return hasOffset(time) ? time.toMSecsSinceEpoch()
                           : firstOfTwo(QDateTime(time.date(), time.time(), zone), zone);
}

std::int64_t midnightOf(const QDate& date, const QTimeZone& zone) {
    return date.startOfDay(zone).toMSecsSinceEpoch();
}

QDate dateOf(std::int64_t timeMs, const QTimeZone& zone) {
    return QDateTime::fromMSecsSinceEpoch(timeMs, zone).date();
}

} // namespace

std::optional<std::int64_t> parseHistoryTime(const std::string& text, std::int64_t nowMs,
                                             const QTimeZone& zone) {
    if (text == "now")
        return nowMs;
    if (!text.empty() && text.front() == '-') {
        const std::optional<std::chrono::milliseconds> ago = parseTimeSpan(text.substr(1));
        return ago ? std::optional<std::int64_t>(nowMs - ago->count()) : std::nullopt;
    }
    return parseDateTime(text, zone);
}

std::string isoTimeText(std::int64_t timeMs, const QTimeZone& zone) {
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(timeMs, zone);
    return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs).toStdString();
}

std::vector<std::int64_t> stretchTimes(std::int64_t fromMs, std::int64_t toMs, std::int64_t lengthMs,
                                       const QTimeZone& zone, std::size_t most) {
    std::vector<std::int64_t> times;
    QDate date = dateOf(fromMs, zone);
    std::int64_t time = midnightOf(date, zone);
    const bool isOfDays = lengthMs % day == 0;
    if (!isOfDays)
        time += (fromMs - time) / lengthMs * lengthMs;
    while (time < toMs) {
        if (times.size() == most)
            return {};
        times.push_back(time);
        date = date.addDays(lengthMs / day);
        time = isOfDays ? midnightOf(date, zone) : time + lengthMs;
    }
    if (!times.empty())
        times.push_back(toMs);
    return times;
}

} // namespace host
