#pragma once

#include <QtGlobal>

#include <string>

namespace host {

// "2026-11-21T09:30:00.125Z"
std::string utcTimeText(qint64 milliseconds);
// "2026-11-21 10:30:00.125+01:00", where the host is
std::string localTimeText(qint64 milliseconds);

// Writes times that lie close together, as those of changes do: only a new second is worked out, which for a
// local time costs more than the rest of a line. One thread.
class TimeText {
public:
    // One of the functions above.
    using ToText = std::string (*)(qint64 milliseconds);

    explicit TimeText(ToText textOfMilliseconds) : toText(textOfMilliseconds) {}

    // The text stays until the next call.
    const std::string& of(qint64 milliseconds);

private:
    const ToText toText;
    qint64 secondStart = 0; // in milliseconds, of the text
    std::string text;       // empty before the first call
};

} // namespace host
