#include "TimeText.h"

#include <QDateTime>

#include <cstdio>
#include <cstdlib>

namespace host {

std::string utcTimeText(qint64 milliseconds) {
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC).toString(Qt::ISODateWithMs).toStdString();
}

std::string localTimeText(qint64 milliseconds) {
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(milliseconds);
    const std::string text = time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")).toStdString();
    const int minutes = time.offsetFromUtc() / 60;
    char zone[16];
    std::snprintf(zone, sizeof zone, "%c%02d:%02d", minutes < 0 ? '-' : '+', std::abs(minutes) / 60,
                  std::abs(minutes) % 60);
    return text + zone;
}

const std::string& TimeText::of(qint64 milliseconds) {
    const qint64 sinceStart = milliseconds - secondStart;
    if (text.empty() || sinceStart < 0 || sinceStart >= 1'000) {
        secondStart = milliseconds - milliseconds % 1'000 - (milliseconds % 1'000 < 0 ? 1'000 : 0);
        text = toText(secondStart);
    }
    const auto fraction = static_cast<int>(milliseconds - secondStart);
    const std::size_t digits = text.rfind('.') + 1;
    text[digits] = static_cast<char>('0' + fraction / 100);
    text[digits + 1] = static_cast<char>('0' + fraction / 10 % 10);
    text[digits + 2] = static_cast<char>('0' + fraction % 10);
    return text;
}

} // namespace host
