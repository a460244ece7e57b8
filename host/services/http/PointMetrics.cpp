#include "PointMetrics.h"

#include "SiteMetrics.h"
#include "site/PointValue.h"

namespace host {

namespace {

class Walk {
public:
    Walk(const Site& site, const ValueStore& valueStore, std::function<bool()> whenEnough)
        : labels(site.name, channelsOf(site)), values(valueStore), isEnough(std::move(whenEnough)) {}

    // Calls for each polled point: labels, point, state.
    template <typename Visit>
    void visitAll(Visit visit) {
        for (const PointTable::Block& block : values.points().blocks())
            visitBlock(block, visit);
    }

private:
    static std::vector<const Channel*> channelsOf(const Site& site) {
        std::vector<const Channel*> channels;
        for (const Channel& channel : site.channels)
            channels.push_back(&channel);
        return channels;
    }

    template <typename Visit>
    void visitBlock(const PointTable::Block& block, Visit visit) {
        const MetricLabels ofRtu = labels.of(*block.channel, *block.rtu);
        for (PointIndex next = block.first; next < block.end() && !isEnough();) {
            values.copyStates(next, block.end() - next, states);
            for (const PointState& state : states) {
                const Point& point = block.rtu->points[next++ - block.first];
                if (point.isPolled)
                    visit(ofRtu, point, state);
            }
        }
    }

    const RtuLabels labels;
    const ValueStore& values;
    const std::function<bool()> isEnough;
    std::vector<PointState> states;
};

} // namespace

void writePointMetrics(MetricsText& text, const Site& site, const ValueStore& values,
                       const std::function<bool()>& isEnough) {
    Walk walk(site, values, isEnough);
    text.beginGauge("sbus_point_good", "Whether the last poll of the point brought a value.");
    walk.visitAll([&text](const MetricLabels& ofRtu, const Point& point, const PointState& state) {
        text.sample(ofRtu.with("point", point.name), state.quality == PointQuality::Good ? 1 : 0);
    });
    text.beginGauge("sbus_point_value", "The point's value in its unit, while it is good.");
    walk.visitAll([&text](const MetricLabels& ofRtu, const Point& point, const PointState& state) {
        if (state.quality != PointQuality::Good)
            return;
        const MetricLabels named = ofRtu.with("point", point.name);
        const std::string& unit = unitOf(point);
        text.sample(unit.empty() ? named : named.with("unit", unit), valueOf(point, state.value));
    });
}

} // namespace host
