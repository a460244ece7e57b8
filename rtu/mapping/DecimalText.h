#pragma once

#include <QString>

namespace sbus {

// The same as `text == QString::number(number)`, without making that text: the question is asked for each
// value of a status point, and making the text would take most of the time that putting the value takes. The
// digits are compared from the last one on; nothing may be left over, neither digits of the number nor
// characters of the text.
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
