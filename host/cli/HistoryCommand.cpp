#include "HistoryCommand.h"

#include "services/control/SiteNames.h"
#include "services/history/Aggregation.h"
#include "services/history/HistoryReader.h"
#include "services/history/HistoryText.h"
#include "services/history/HistoryTimes.h"
#include "services/history/PlotAxes.h"
#include "services/history/PlotSvg.h"
#include "site/PointValue.h"
#include "site/SiteFile.h"

#include <ControlCharacters.h>

#include <QDateTime>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace host {

namespace {

namespace fs = std::filesystem;

// Of one point: a year of minutes, and some to spare.
constexpr std::size_t mostStretches = 1'000'000;

// What is wrong, told so that somebody can act on it.
class HistoryFault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct AskedTime {
    std::int64_t fromMs = 0;
    std::int64_t toMs = 0;
    QTimeZone zone;
};

struct AskedPoint {
    HistoryPoint shown;
    std::int64_t number = 0; // in the file; 0: nothing was ever recorded of it
};

std::int64_t timeNamed(const std::string& text, std::int64_t nowMs, const QTimeZone& zone) {
    const std::optional<std::int64_t> time = parseHistoryTime(text, nowMs, zone);
    if (!time)
        throw HistoryFault("\"" + text +
                           "\" is no time; write 2026-11-22, \"2026-11-22 14:00\", "
                           "2026-11-22T14:00:00+01:00, or -1h for an hour ago");
    return *time;
}

// While a host writes, what is known ends a moment ago: that is now, and no gap.
std::int64_t endOfKnown(HistoryReader& reader) {
    constexpr std::int64_t mostBehind = 3'000; // of a host that commits once a second
    const std::int64_t now = QDateTime::currentMSecsSinceEpoch();
    const std::int64_t known = reader.endOfRuns();
    return known < now && now - known < mostBehind ? known : now;
}

AskedTime timeOf(const HistoryOptions& options, std::int64_t now) {
    AskedTime time;
    time.zone = QTimeZone::systemTimeZone();
    time.fromMs = timeNamed(options.from, now, time.zone);
    time.toMs = std::min(timeNamed(options.to, now, time.zone), now);
    if (time.fromMs >= time.toMs)
        throw HistoryFault("nothing lies between --from " + options.from + " and --to " + options.to +
                           (time.toMs == now ? ", which cannot be later than now" : ""));
    return time;
}

// A point of the site as it is now, or else one that it had.
AskedPoint pointNamed(const std::string& name, const SiteNames& names, HistoryReader& reader) {
    const SiteNames::Match<PointRef> match = names.findPoint(name);
    if (const Point* const point = match.found.point; point != nullptr) {
        AskedPoint asked{{names.nameOf(match.found), unitOf(*point), {}, point->kind == PointKind::Status}};
        if (point->engineering && point->engineering->decimals)
            asked.shown.decimals = *point->engineering->decimals;
        for (const HistoryReader::NamedPoint& recorded : reader.find(match.found))
            asked.number = recorded.number;
        return asked;
    }
    const std::vector<HistoryReader::NamedPoint> recorded = reader.find(name);
    if (recorded.empty())
        throw HistoryFault(match.fault);
    if (recorded.size() > 1)
        throw HistoryFault("points of several channels were recorded as \"" + name +
                           "\"; write CHANNEL/RTU/POINT");
    return {{name, recorded.front().unit, {}, false}, recorded.front().number};
}

// From the file, or aggregated.
class Recordings {
public:
    Recordings(HistoryReader& historyReader, const AskedTime& askedTime, const HistoryOptions& options)
        : reader(historyReader), time(askedTime), aggregate(options.aggregate) {
        if (!options.every)
            return;
        stretches = stretchTimes(time.fromMs, time.toMs, options.every->count(), time.zone, mostStretches);
        if (stretches.empty())
            throw HistoryFault("these are more than a million values for each point; ask for fewer with a "
                               "longer --every");
        time.fromMs = stretches.front();
    }

    const AskedTime& askedTime() const { return time; }
    bool isAggregated() const { return !stretches.empty(); }

    void read(const AskedPoint& point, const SpanMaker::Taker& take) const {
        SpanMaker spans(reader.runs(time.fromMs, time.toMs), time.fromMs, time.toMs, take);
        reader.read(point.number, time.fromMs, time.toMs,
                    [&spans](const RecordedRow& row) { spans.add(row); });
        spans.finish();
    }

    std::vector<AggregatedValue> aggregated(const AskedPoint& point) const {
        Aggregation aggregation(aggregate, stretches);
        read(point, [&aggregation](const RecordedSpan& span) { aggregation.add(span); });
        return aggregation.values();
    }

private:
    HistoryReader& reader;
    AskedTime time;
    const Aggregate aggregate;
    std::vector<std::int64_t> stretches;
};

void writeText(const Recordings& recordings, const std::vector<AskedPoint>& points, HistoryFormat format) {
    const QTimeZone& zone = recordings.askedTime().zone;
    const std::unique_ptr<HistoryText> text =
        format == HistoryFormat::Json ? makeHistoryJson(zone) : makeHistoryCsv(zone);
    std::cout << text->header(recordings.isAggregated());
    for (const AskedPoint& point : points) {
        if (!recordings.isAggregated())
            recordings.read(point,
                            [&](const RecordedSpan& span) { std::cout << text->line(point.shown, span); });
        else
            for (const AggregatedValue& value : recordings.aggregated(point))
                std::cout << text->line(point.shown, value);
    }
    std::cout << std::flush;
}

// As a span of the time that it was made of.
RecordedSpan spanOf(const AggregatedValue& value) {
    RecordedSpan span{value.beginMs, value.endMs, value.beginMs, value.otherQuality, {}};
    if (value.goodShare() >= 0.5) {
        span.quality = PointQuality::Good;
        span.value = value.value;
    }
    return span;
}

void draw(const Recordings& recordings, const std::vector<AskedPoint>& points, const std::string& site,
          const HistoryOptions& options) {
    const AskedTime& time = recordings.askedTime();
    std::error_code failure;
    const fs::path file = fs::u8path(options.plot);
    if (!options.overwrites && fs::exists(file, failure))
        throw HistoryFault(options.plot + " is there already; name another file, or write over it with "
                                          "--force");
    Plot plot{site + ": " + plainTimeText(time.fromMs, time.zone) + " to " +
                  plainTimeText(time.toMs, time.zone),
              time.fromMs,
              time.toMs,
              time.zone,
              {}};
    for (const AskedPoint& point : points) {
        PlotCurve& curve = plot.curves.emplace_back(point.shown, time.fromMs, time.toMs, plotColumns);
        if (!recordings.isAggregated())
            recordings.read(point, [&curve](const RecordedSpan& span) { curve.add(span); });
        else
            for (const AggregatedValue& value : recordings.aggregated(point))
                curve.add(spanOf(value));
    }
    std::ofstream picture(file, std::ios::binary | std::ios::trunc);
    picture << svgText(plot);
    picture.close();
    if (picture.fail())
        throw HistoryFault(options.plot + " cannot be written");
}

void show(const HistoryOptions& options, const Site& site) {
    HistoryReader reader(site.history->file);
    const PointTable table(site);
    const SiteNames names(table);
    std::vector<AskedPoint> points;
    for (const std::string& name : options.points)
        points.push_back(pointNamed(name, names, reader));
    const Recordings recordings(reader, timeOf(options, endOfKnown(reader)), options);
    if (options.plot.empty())
        writeText(recordings, points, options.format);
    else
        draw(recordings, points, site.name, options);
}

ExitStatus failed(const std::string& fault) {
    std::cerr << "sbus-host: " << text::printable(fault) << '\n';
    return ExitStatus::Configuration;
}

} // namespace

ExitStatus showHistory(const HistoryOptions& options) {
    const LoadedSite loaded = loadSite(options.sitePath);
    if (loaded.findings.hasErrors())
        return failed(options.sitePath + " has errors; sbus-host check tells them");
    if (!loaded.site.history)
        return failed(options.sitePath + " has no table [history]: nothing is recorded");
    const std::string& file = loaded.site.history->file;
    try {
        show(options, loaded.site);
        return ExitStatus::Good;
    } catch (const HistoryFault& fault) {
        return failed(fault.what());
    } catch (const HistoryRefused& refusal) {
        return failed("history " + file + " " + refusal.what());
    } catch (const SQLite::Exception& failure) {
        return failed("history " + file + " cannot be read: " + failure.what());
    }
}

} // namespace host
