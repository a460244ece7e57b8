#pragma once

#include <QByteArray>
#include <QTemporaryDir>

#include <string>

// A serial line made of a pseudo terminal: the device is for the link or host under test, the far end is the
// test's. POSIX only.
//
// States: plugged in (as made) and unplugged; while unplugged the device does not exist, and whoever has it
// open has lost it. The device keeps its path. Threads: one at a time.
class PtyPair {
public:
    PtyPair();
    PtyPair(const PtyPair&) = delete;
    PtyPair& operator=(const PtyPair&) = delete;
    ~PtyPair();

    const std::string& device() const { return path; }

    void unplug();
    void plugIn();

    // Writes from the far end, waiting while the line is full.
    void write(const QByteArray& bytes);
    // Reads at the far end until `count` bytes are there or nothing has come for 5 s.
    QByteArray read(int count);
    // Waits, at most 5 s, until `count` bytes lie unread at the device. Whether they do.
    bool awaitUnread(int count) const;

private:
    QTemporaryDir folder;
    const std::string path;
    int farEnd = -1;
    int nearEnd = -1; // keeps the line alive while nobody has the device open
};
