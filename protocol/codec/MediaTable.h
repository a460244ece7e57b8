#pragma once

#include <QString>

// The kinds of element that a controller has, each named by one upper-case letter.
namespace sbus {

quint32 readCommandForMedia(const QString& media);
// The number of consecutive elements at which a read telegram is cut.
int readLimitForMedia(const QString& media);
// Stores the write command of `media` in `command`; leaves it as it was for a media that cannot be written.
void writeCommandForMedia(quint32& command, const QString& media);
// The letter under which an answer to `readCommand` is published; empty for any other command.
QString mediaForReadCommand(quint32 readCommand);

} // namespace sbus
