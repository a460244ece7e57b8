#pragma once

namespace host {

// value = raw x scale + offset, in both directions. Never changes.
class Scaling {
public:
    Scaling() = default;
    // The scale is not 0.
    Scaling(double valueScale, double valueOffset);

    double scale() const { return factor; }
    double offset() const { return shift; }
    bool isNone() const { return factor == 1 && shift == 0; }

    // Of a whole raw number the value is the one that a person would work out in decimals, 0.3 and not
    // 0.30000000000000004 for 3 x 0.1, as long as it has no more than 15 digits.
    double valueOf(double raw) const;
    // Not rounded.
    double rawOf(double value) const { return (value - shift) / factor; }

private:
    double factor = 1;
    double shift = 0;
    // Both times a power of ten are whole numbers. The power is 0 when that takes too many digits.
    double power = 1;
    double wholeFactor = 1;
    double wholeShift = 0;
};

} // namespace host
