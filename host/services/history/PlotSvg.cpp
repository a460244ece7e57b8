#include "PlotSvg.h"

#include "PlotAxes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <functional>

namespace host {

namespace {

constexpr int left = 90; // of the curves
constexpr int right = 30;
constexpr int width = left + plotWidth + right;
constexpr int titleHeight = 44;
constexpr int legendLine = 20;
constexpr int analogHeight = 240;
constexpr int statusHeight = 46;
constexpr int panelGap = 26;
constexpr int timeAxisHeight = 66;
constexpr std::size_t mostTimeTicks = 10;
constexpr std::size_t mostValueTicks = 6;

// Colours that people who see few of them tell apart, too.
constexpr std::array<const char*, 7> colours{"#0072b2", "#d55e00", "#009e73", "#cc79a7",
                                             "#e69f00", "#56b4e9", "#000000"};

struct Panel {
    std::vector<std::size_t> curves; // places in the plot
    bool isStatus = false;
    int top = 0;
    int height = 0;
    ValueAxis axis;

    double yOf(double value) const {
        return top + height - (value - axis.low) / (axis.high - axis.low) * height;
    }
};

std::string escaped(const std::string& utf8) {
    std::string text;
    for (const char character : utf8) {
        switch (character) {
        case '&':
            text += "&amp;";
            break;
        case '<':
            text += "&lt;";
            break;
        case '"':
            text += "&quot;";
            break;
        default:
            text += character;
        }
    }
    return text;
}

// With one decimal at most, which is a tenth of a point of the picture.
std::string coordinate(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    std::string shown = text;
    return shown.substr(shown.size() - 2) == ".0" ? shown.substr(0, shown.size() - 2) : shown;
}

std::string coloured(std::size_t curve) {
    // Beyond the colours there are, the lines are dashed.
    return std::string("stroke=\"") + colours[curve % colours.size()] + '"' +
           (curve >= colours.size() ? " stroke-dasharray=\"6 3\"" : "");
}

class Drawing {
public:
    explicit Drawing(const Plot& drawnPlot) : plot(drawnPlot) {}

    std::string draw() {
        arrangePanels();
        begin();
        drawLegend();
        for (const Panel& panel : panels)
            drawPanel(panel);
        drawTimeAxis();
        text += "</svg>\n";
        return text;
    }

private:
    void arrangePanels() {
        for (std::size_t i = 0; i < plot.curves.size(); ++i) {
            const HistoryPoint& point = plot.curves[i].point();
            const auto panel = std::find_if(panels.begin(), panels.end(), [&](const Panel& one) {
                return !one.isStatus && !point.isStatus &&
                       plot.curves[one.curves.front()].point().unit == point.unit;
            });
            if (panel != panels.end())
                panel->curves.push_back(i);
            else
                panels.push_back({{i}, point.isStatus, 0, 0, {}});
        }
        std::stable_partition(panels.begin(), panels.end(),
                              [](const Panel& panel) { return !panel.isStatus; });
        int top = titleHeight + legendLine * static_cast<int>((plot.curves.size() + 1) / 2) + panelGap;
        for (Panel& panel : panels) {
            panel.top = top;
            panel.height = panel.isStatus ? statusHeight : analogHeight;
            panel.axis = panel.isStatus ? statusAxis() : axisOf(panel);
            top += panel.height + panelGap;
        }
        bottom = top - panelGap;
    }

    static ValueAxis statusAxis() { return {-0.2, 1.2, {{0, "off"}, {1, "on"}}}; }

    ValueAxis axisOf(const Panel& panel) const {
        double lowest = HUGE_VAL;
        double highest = -HUGE_VAL;
        for (const std::size_t curve : panel.curves)
            for (const PlotCurve::Column& column : plot.curves[curve].columns())
                if (plot.curves[curve].isShown(column)) {
                    lowest = std::min(lowest, column.lowest);
                    highest = std::max(highest, column.highest);
                }
        return lowest <= highest ? valueAxis(lowest, highest, mostValueTicks) : ValueAxis{0, 1, {}};
    }

    void begin() {
        const std::string size = std::to_string(width) + "\" height=\"" + std::to_string(height());
        text = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + size + "\" viewBox=\"0 0 " +
               std::to_string(width) + ' ' + std::to_string(height()) +
               "\" font-family=\"sans-serif\" font-size=\"12\" fill=\"#222\">\n"
               "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n";
        addText(left, 28, "start", plot.title, " font-size=\"16\" font-weight=\"bold\"");
    }

    int height() const { return bottom + timeAxisHeight; }

    void addText(double x, double y, const char* anchor, const std::string& words,
                 const std::string& more = {}) {
        text += "<text x=\"" + coordinate(x) + "\" y=\"" + coordinate(y) + "\" text-anchor=\"" + anchor +
                '"' + more + '>' + escaped(words) + "</text>\n";
    }

    void addLine(double x1, double y1, double x2, double y2, const std::string& stroke) {
        text += "<line x1=\"" + coordinate(x1) + "\" y1=\"" + coordinate(y1) + "\" x2=\"" + coordinate(x2) +
                "\" y2=\"" + coordinate(y2) + "\" " + stroke + "/>\n";
    }

    // Two in a row.
    void drawLegend() {
        for (std::size_t i = 0; i < plot.curves.size(); ++i) {
            const int x = left + static_cast<int>(i % 2) * plotWidth / 2;
            const int y = titleHeight + 12 + legendLine * static_cast<int>(i / 2);
            addLine(x, y - 4, x + 24, y - 4, coloured(i) + " stroke-width=\"2.5\"");
            const HistoryPoint& point = plot.curves[i].point();
            addText(x + 32, y, "start", point.name + (point.unit.empty() ? "" : " [" + point.unit + ']'));
        }
    }

    void drawPanel(const Panel& panel) {
        drawUnrecorded(panel);
        for (const ValueTick& tick : panel.axis.ticks) {
            addLine(left, panel.yOf(tick.value), left + plotWidth, panel.yOf(tick.value), "stroke=\"#ddd\"");
            addText(left - 8, panel.yOf(tick.value) + 4, "end", tick.label);
        }
        const std::string& unit = plot.curves[panel.curves.front()].point().unit;
        if (!unit.empty())
            addText(left - 8, panel.top - 8, "end", unit);
        for (const TimeTick& tick : ticks())
            addLine(xOf(tick.timeMs), panel.top, xOf(tick.timeMs), panel.top + panel.height,
                    "stroke=\"#ddd\"");
        for (const std::size_t curve : panel.curves)
            drawCurve(panel, curve);
        text += "<rect x=\"" + std::to_string(left) + "\" y=\"" + std::to_string(panel.top) + "\" width=\"" +
                std::to_string(plotWidth) + "\" height=\"" + std::to_string(panel.height) +
                "\" fill=\"none\" stroke=\"#888\"/>\n";
    }

    // Where none of the panel's points has been.
    void drawUnrecorded(const Panel& panel) {
        const auto isUnrecorded = [&](std::size_t column) {
            return std::all_of(panel.curves.begin(), panel.curves.end(), [&](std::size_t curve) {
                return plot.curves[curve].isUnrecorded(plot.curves[curve].columns()[column]);
            });
        };
        for (std::size_t begin = 0; begin < plotColumns; ++begin) {
            if (!isUnrecorded(begin))
                continue;
            std::size_t end = begin + 1;
            while (end < plotColumns && isUnrecorded(end))
                ++end;
            text += "<rect class=\"unrecorded\" x=\"" + coordinate(columnX(begin)) + "\" y=\"" +
                    std::to_string(panel.top) + "\" width=\"" + coordinate(columnX(end) - columnX(begin)) +
                    "\" height=\"" + std::to_string(panel.height) + "\" fill=\"#f0f0f0\"/>\n";
            hasUnrecorded = true;
            begin = end;
        }
    }

    // From column to column: to where its values came in, along them, and on from where they left.
    void drawCurve(const Panel& panel, std::size_t number) {
        const PlotCurve& curve = plot.curves[number];
        std::string path;
        bool isDrawing = false;
        double y = 0;
        const auto goTo = [&](double value) {
            const double next = panel.yOf(value);
            if (coordinate(next) != coordinate(y))
                path += 'V' + coordinate(next);
            y = next;
        };
        for (std::size_t i = 0; i < curve.columns().size(); ++i) {
            const PlotCurve::Column& column = curve.columns()[i];
            const bool isShown = curve.isShown(column);
            const bool isLevel = isDrawing && isShown && column.lowest == column.highest &&
                                 coordinate(panel.yOf(column.first)) == coordinate(y);
            if (!isLevel && isDrawing)
                path += 'H' + coordinate(columnX(i));
            if (!isShown || isLevel) {
                isDrawing = isShown;
                continue;
            }
            if (!isDrawing) {
                y = panel.yOf(column.first);
                path += 'M' + coordinate(columnX(i)) + ' ' + coordinate(y);
            }
            isDrawing = true;
            for (const double value : {column.first, column.lowest, column.highest, column.last})
                goTo(value);
        }
        if (isDrawing)
            path += 'H' + coordinate(columnX(curve.columns().size()));
        if (!path.empty())
            text += "<path d=\"" + path + "\" fill=\"none\" " + coloured(number) +
                    " stroke-width=\"1.5\" stroke-linejoin=\"round\"/>\n";
    }

    void drawTimeAxis() {
        for (const TimeTick& tick : ticks()) {
            addLine(xOf(tick.timeMs), bottom, xOf(tick.timeMs), bottom + 5, "stroke=\"#888\"");
            addText(xOf(tick.timeMs), bottom + 18, "middle", tick.label);
            if (!tick.below.empty())
                addText(xOf(tick.timeMs), bottom + 34, "middle", tick.below);
        }
        const std::string small = " font-size=\"11\" fill=\"#666\"";
        addText(left + plotWidth, bottom + 54, "end",
                "local time: " + zoneText(plot.fromMs, plot.toMs, plot.zone), small);
        if (hasUnrecorded)
            addText(left, bottom + 54, "start", "grey: not recorded; no line: no good value", small);
        else
            addText(left, bottom + 54, "start", "no line: no good value", small);
    }

    std::vector<TimeTick> ticks() const {
        return timeTicks(plot.fromMs, plot.toMs, plot.zone, mostTimeTicks);
    }
    double xOf(std::int64_t timeMs) const {
        return left + static_cast<double>(timeMs - plot.fromMs) /
                          static_cast<double>(plot.toMs - plot.fromMs) * plotWidth;
    }
    static double columnX(std::size_t column) {
        return left + static_cast<double>(column) * plotWidth / static_cast<double>(plotColumns);
    }

    const Plot& plot;
    std::vector<Panel> panels;
    int bottom = 0; // of the last panel
    bool hasUnrecorded = false;
    std::string text;
};

} // namespace

std::string svgText(const Plot& plot) {
    return Drawing(plot).draw();
}

} // namespace host
