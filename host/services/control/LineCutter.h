#pragma once

#include <QByteArray>

#include <optional>

namespace host {

// Cuts a stream of bytes into lines. However long a line gets, no more than its limit and what was appended
// last are held of it, as long as next() is called until there is nothing.
class LineCutter {
public:
    struct Line {
        QByteArray text;        // without its end, which is "\n" or "\r\n"
        bool isTooLong = false; // what it held is gone, the next line begins behind its end
    };

    explicit LineCutter(int longestLine) : longest(longestLine) {}

    void append(const QByteArray& bytes);
    bool hasLine();
    // The next complete line. A line that gets too long is told as soon as that is known.
    std::optional<Line> next();

private:
    void dropBefore(int position);

    const int longest;
    QByteArray buffer;
    int begin = 0;           // of what was not yet handed out
    int scanned = 0;         // no line end between begin and here
    bool isSkipping = false; // the rest of a line that was too long
};

} // namespace host
