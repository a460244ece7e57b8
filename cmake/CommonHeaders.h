// What most files read, for builds that read it once (SBUS_PRECOMPILED_HEADERS). Nothing may rely on it: each
// file includes what it uses, and the other builds go without.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

// Some libraries stand without Qt.
#if __has_include(<QByteArray>)
#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QThread>
#include <QVector>
#endif
