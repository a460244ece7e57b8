#pragma once

#include <QString>

#include <optional>

namespace sbus {

// A point address, "R200", split into media letter and number.
struct PointAddress {
    QString media;
    QString numberText; // as written: leading zeros stay

    int number() const { return numberText.toInt(nullptr, 10); } // 0 for a text that is no number
    // The text under which points are found again. "R007" and "R7" are different keys.
    QString key() const { return media + numberText; }
};

// One upper-case letter and one to five digits, nothing before or after. Any letter will do here.
std::optional<PointAddress> matchAddress(const QString& text);
// The same once the blanks are removed.
std::optional<PointAddress> matchAddressIgnoringBlanks(const QString& text);

} // namespace sbus
