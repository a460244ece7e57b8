#include "LineCutter.h"

#include <algorithm>

namespace host {

void LineCutter::append(const QByteArray& bytes) {
    buffer.remove(0, begin);
    scanned -= begin;
    begin = 0;
    buffer.append(bytes);
    if (!isSkipping)
        return;
    const int end = buffer.indexOf('\n');
    isSkipping = end < 0;
    dropBefore(end < 0 ? buffer.size() : end + 1);
}

void LineCutter::dropBefore(int position) {
    begin = position;
    scanned = position;
}

bool LineCutter::hasLine() {
    const int end = buffer.indexOf('\n', scanned);
    scanned = end < 0 ? buffer.size() : end;
    return end >= 0 || buffer.size() - begin > longest;
}

std::optional<LineCutter::Line> LineCutter::next() {
    if (!hasLine())
        return std::nullopt;
    const int end = scanned;
    const bool isComplete = end < buffer.size();
    if (end - begin > longest) {
        isSkipping = !isComplete;
        dropBefore(isComplete ? end + 1 : end);
        return Line{{}, true};
    }
    QByteArray text = buffer.mid(begin, end - begin);
    if (text.endsWith('\r'))
        text.chop(1);
    dropBefore(end + 1);
    return Line{text, false};
}

} // namespace host
