#pragma once

#include "PlotCurve.h"

#include <QTimeZone>

#include <string>
#include <vector>

namespace host {

// How wide the part of a plot is in which there are curves, in points of the picture; and how many columns
// they have.
constexpr int plotWidth = 840;
constexpr std::size_t plotColumns = 2 * std::size_t{plotWidth};

struct Plot {
    std::string title;
    std::int64_t fromMs = 0;
    std::int64_t toMs = 0;
    QTimeZone zone;
    std::vector<PlotCurve> curves; // of plotColumns columns
};

// The plot as a picture for browsers, documents and paper: one panel for each unit, and a narrow one for each
// status point, above a common axis of local time. Curves are steps, since a value stands until the next one.
// Where a point was not good, its curve has a gap; where nothing was recorded, the ground is grey.
std::string svgText(const Plot& plot);

} // namespace host
