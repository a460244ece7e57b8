#pragma once

#include <HalvexDriverComponent/EScan.h>

#include <QString>

// How often an RTU is asked for each kind of poll, in milliseconds. 0 or less: never.
struct ScanPeriods {
    int integrityMs = 60'000;
    int statusMs = 1'000;
    int analogMs = 2'000;
};

// The host's configuration of one RTU, without its points.
struct RemoteTerminalUnit {
    int id = 0; // unique within its channel
    QString name;
    bool enabled = true;
    EScan scan;
    int sessionTimeOutMs = 1'000; // how long an answer may take
    ScanPeriods periods;
};
