#pragma once

#include <QString>

#include <optional>

namespace sbus {

// A point address, "R200", split into media letter and number.
struct PointAddress {
    QString media;
    QString numberText; // as written: leading zeros stay

    int number() const { return numberText.toInt(nullptr, 10); } // 0 for a text that is no number
    // The text by which values find their points. "R007" and "R7" are different keys.
    QString key() const { return media + numberText; }
};

// One letter from A to Z and one to five digits, nothing before or after. Digits of other scripts match too;
// as a number they count as 0.
std::optional<PointAddress> matchAddress(const QString& text);
// The same after all blanks were removed from the text.
std::optional<PointAddress> matchAddressIgnoringBlanks(const QString& text);

} // namespace sbus
