#include "services/history/PlotSvg.h"

#include <QXmlStreamReader>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::HistoryPoint;
using host::Plot;
using host::plotColumns;
using host::PlotCurve;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

// Of 1,680 columns, one for each second.
constexpr std::int64_t from = 0;
constexpr std::int64_t to = 1'680'000;

PlotCurve curveOf(const HistoryPoint& point) {
    return {point, from, to, plotColumns};
}

void addGood(PlotCurve& curve, std::int64_t beginSecond, std::int64_t endSecond, double value) {
    curve.add({beginSecond * 1'000, endSecond * 1'000, 0, PointQuality::Good, value});
}

void addBad(PlotCurve& curve, std::int64_t beginSecond, std::int64_t endSecond) {
    curve.add({beginSecond * 1'000, endSecond * 1'000, 0, PointQuality::Bad, {}});
}

void addNothing(PlotCurve& curve, std::int64_t beginSecond, std::int64_t endSecond) {
    curve.add({beginSecond * 1'000, endSecond * 1'000, 0, {}, {}});
}

Plot plotOf(std::vector<PlotCurve> curves) {
    return {"north", from, to, QTimeZone::utc(), std::move(curves)};
}

// What stands in the attributes of this name of elements of this kind.
std::vector<std::string> attributes(const std::string& svg, const char* element, const char* attribute) {
    std::vector<std::string> values;
    QXmlStreamReader reader(QString::fromStdString(svg));
    while (!reader.atEnd())
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == QLatin1String(element) &&
            reader.attributes().hasAttribute(QLatin1String(attribute)))
            values.push_back(reader.attributes().value(QLatin1String(attribute)).toString().toStdString());
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return values;
}

std::vector<std::string> texts(const std::string& svg) {
    std::vector<std::string> all;
    QXmlStreamReader reader(QString::fromStdString(svg));
    while (!reader.atEnd())
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == QLatin1String("text"))
            all.push_back(reader.readElementText().toStdString());
    return all;
}

const HistoryPoint level{"pump-house/LEVEL", "m", 2, false};
const HistoryPoint flow{"pump-house/FLOW <1>", "l/s", {}, false};
const HistoryPoint run{"pump-house/RUN", "", {}, true};

} // namespace

TEST(PlotCurve, KeepsExtremesWithinAColumn) {
    PlotCurve curve(level, 0, 1'000, 10);
    curve.add({0, 20, 0, PointQuality::Good, 5.});
    curve.add({20, 40, 0, PointQuality::Good, 9.});
    curve.add({40, 60, 0, PointQuality::Good, 1.});
    curve.add({60, 250, 0, PointQuality::Good, 4.});
    curve.add({250, 1'000, 0, PointQuality::Bad, {}});
    const PlotCurve::Column& first = curve.columns()[0];
    EXPECT_EQ(first.first, 5);
    EXPECT_EQ(first.lowest, 1);
    EXPECT_EQ(first.highest, 9);
    EXPECT_EQ(first.last, 4);
    EXPECT_TRUE(curve.isShown(curve.columns()[2])) << "half of it";
    EXPECT_FALSE(curve.isShown(curve.columns()[3]));
}

TEST(PlotSvg, DrawsStepsWithAGapWhereThePointWasNotGood) {
    PlotCurve curve = curveOf(level);
    addGood(curve, 0, 400, 0);
    addGood(curve, 400, 800, 10);
    addBad(curve, 800, 1'200);
    addGood(curve, 1'200, 1'680, 10);
    const std::string svg = svgText(plotOf({curve}));
    // From 90 on, half a point of the picture for each second. The axis goes from -0.5 to 10.5.
    EXPECT_THAT(attributes(svg, "path", "d"), ElementsAre("M90 319.1H290V100.9H490M690 100.9H930"));
}

TEST(PlotSvg, DrawsOneLineForAColumnOfManyChanges) {
    PlotCurve curve = curveOf(level);
    for (std::int64_t ms = 0; ms < to; ms += 100)
        curve.add({ms, ms + 100, 0, PointQuality::Good, static_cast<double>(ms % 7)});
    const std::string svg = svgText(plotOf({curve}));
    EXPECT_LT(svg.size(), 60'000U);
}

TEST(PlotSvg, ShadesWhatWasNotRecorded) {
    PlotCurve curve = curveOf(level);
    addGood(curve, 0, 400, 1);
    addNothing(curve, 400, 800);
    addBad(curve, 800, 1'680);
    const std::string svg = svgText(plotOf({curve}));
    EXPECT_THAT(attributes(svg, "rect", "class"), ElementsAre("unrecorded"));
    EXPECT_THAT(svg, HasSubstr("x=\"290\""));
    EXPECT_THAT(svg, HasSubstr("width=\"200\""));
    EXPECT_THAT(texts(svg), testing::Contains("grey: not recorded; no line: no good value"));
}

TEST(PlotSvg, HasAPanelForEachUnitAndEachStatusPoint) {
    std::vector<PlotCurve> curves;
    for (const HistoryPoint& point : {level, run, flow, level}) {
        curves.push_back(curveOf(point));
        addGood(curves.back(), 0, 1'680, 1);
    }
    const std::string svg = svgText(plotOf(curves));
    EXPECT_THAT(attributes(svg, "path", "stroke"), testing::SizeIs(4));
    const std::vector<std::string> words = texts(svg);
    EXPECT_EQ(std::count(words.begin(), words.end(), "m"), 1) << "one axis of metres";
    EXPECT_EQ(std::count(words.begin(), words.end(), "l/s"), 1);
    EXPECT_EQ(std::count(words.begin(), words.end(), "on"), 1);
    EXPECT_THAT(words, testing::Contains("pump-house/FLOW <1> [l/s]"));
}

TEST(PlotSvg, NamesTimesAndZone) {
    const std::string svg = svgText(plotOf({curveOf(level)}));
    EXPECT_THAT(texts(svg), testing::Contains("north"));
    EXPECT_THAT(texts(svg), testing::Contains("00:10"));
    EXPECT_THAT(texts(svg), testing::Contains("1970-01-01"));
    EXPECT_THAT(texts(svg), testing::Contains("local time: UTC, UTC+00:00"));
    EXPECT_THAT(svg, Not(HasSubstr("path"))) << "nothing was good";
}
