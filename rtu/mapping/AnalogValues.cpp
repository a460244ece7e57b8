#include "AnalogValues.h"

#include "BigEndian.h"

#include <limits>

namespace sbus {
namespace {

bool isLetter(const QString& media, char letter) {
    return media.size() == 1 && media.at(0) == QLatin1Char(letter);
}

bool isRegisterMedia(const QString& media) {
    return isLetter(media, 'R');
}

bool isFloatRegister(const QString& media, unsigned dataType) {
    return dataType == floatDataType && isRegisterMedia(media);
}

bool isTimerMedia(const QString& media) {
    return isLetter(media, 'T');
}

// What fits `Integer` of `value` cut toward zero; its lowest number for all else, NaN included.
template <typename Integer>
Integer truncated(double value) {
    constexpr Integer lowest = std::numeric_limits<Integer>::min();
    const auto limit = -static_cast<double>(lowest); // a power of two: exact
    return value >= -limit && value < limit ? static_cast<Integer>(value) : lowest;
}

template <typename Number>
QByteArray bigEndian(Number number) {
    QByteArray bytes;
    appendBigEndian(bytes, number);
    return bytes;
}

QByteArray integerData(const QString& media, double value) {
    if (isTimerMedia(media))
        return bigEndian(static_cast<quint32>(truncated<qint64>(value)));
    return bigEndian(truncated<qint32>(value));
}

} // namespace

WordReader::WordReader(const QString& media)
    : isRegister(isRegisterMedia(media)), isTimer(isTimerMedia(media)) {}

QByteArray singleWriteData(const QString& media, unsigned dataType, double value) {
    return isFloatRegister(media, dataType) ? bigEndian(encodeSaiaFloat(value)) : integerData(media, value);
}

QByteArray listWriteData(const QString& media, unsigned dataType, double value) {
    if (!isFloatRegister(media, dataType))
        return integerData(media, value);
    return bigEndian(static_cast<double>(static_cast<float>(value)));
}

} // namespace sbus
