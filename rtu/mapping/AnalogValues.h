#pragma once

#include "SaiaFloat.h"

#include <HalvexDriverComponent/Halvex.h>

#include <QByteArray>
#include <QString>

// The numbers of analog points, and the words and bytes that stand for them in the elements of `media`. A
// point of a register whose data type is Float is a float register.
namespace sbus {

constexpr auto floatDataType = static_cast<unsigned>(Halvex::PointDataType::Float);

// Words as they were read from elements of one media: timers unsigned, float registers in the controller's
// own format, all else signed. What depends on the media alone is looked at once for all words of a telegram.
class WordReader {
public:
    explicit WordReader(const QString& media);

    double value(unsigned dataType, quint32 word) const {
        if (dataType == floatDataType && isRegister)
            return decodeSaiaFloat(word);
        return isTimer ? static_cast<double>(word) : static_cast<double>(static_cast<qint32>(word));
    }

private:
    const bool isRegister;
    const bool isTimer;
};

// What a single set point writes, in four bytes: timers unsigned, float registers in the controller's own
// format, all else signed. Cut toward zero; what a signed number cannot hold becomes 0x80000000.
QByteArray singleWriteData(const QString& media, unsigned dataType, double value);

// What a list of set points writes. Differs from a single one in float registers alone: they take the eight
// bytes of a double, rounded to single precision.
QByteArray listWriteData(const QString& media, unsigned dataType, double value);

} // namespace sbus
