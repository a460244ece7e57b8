#pragma once

#include <QString>

namespace sbus {

// The same as `text == QString::number(number)`, without making that text. Both addresses of a status point
// are compared for each of its values, and to make two texts takes 57 ns where all else of a put takes 36.
// The digits are compared from the last one on, and nothing may be left over in the end, neither digits of
// the number nor characters of the text.
inline bool isDecimalText(const QString& text, quint32 number) {
    int left = text.size();
    do {
        if (left == 0 || text.at(--left).unicode() != '0' + number % 10)
            return false;
        number /= 10;
    } while (number != 0);
    return left == 0;
}

} // namespace sbus
