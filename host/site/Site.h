#pragma once

#include "ElementAddress.h"
#include "Engineering.h"
#include "Finding.h"
#include "HistorySettings.h"
#include "HttpSettings.h"
#include "LinkUrl.h"
#include "ModbusSettings.h"
#include "MqttSettings.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// What a site file describes, checked and in its plain form: lines, controllers, points.
namespace host {

// Ids from here on are not for points of the file: numbers of hidden points, which are read but never shown,
// begin here.
constexpr unsigned firstHiddenNumber = 0x8000'0000;

enum class PointKind : std::uint8_t { Status, Analog };

// There may be a million of them, so the order of the members is the one that takes the least room.
struct Point {
    unsigned id = 0;      // unique within its RTU, over both kinds
    unsigned pulseMs = 0; // 0: stays as commanded
    std::string name;
    ElementAddress address;                      // what is read, and what an off command writes
    std::optional<ElementAddress> secondAddress; // what an on command writes, where it is not `address`
    Spot spot;                                   // in its RTU's point file
    std::optional<std::uint16_t> modbus;         // its address for Modbus; none: by its order
    // The address as it stands in the file, where that is not its plain form.
    std::shared_ptr<const std::string> writtenAddress;
    std::shared_ptr<const std::string> description; // for people; null: none
    std::shared_ptr<const Engineering> engineering; // null: what is shown is the number in the controller
    std::optional<std::uint8_t> value;              // what goes to `address`
    std::optional<std::uint8_t> secondValue;        // what goes to `secondAddress`
    PointKind kind = PointKind::Status;
    bool isFloat = false; // the register holds the controller's own floating-point format
    bool isIeee = false;  // the register's 32 bits are an IEEE 754 number of single precision
    bool isPolled = true; // of a status point; false: it is only commanded
};

enum class TransmitType { Data, Break };

struct ScanTimes {
    std::chrono::milliseconds integrity{60'000};
    std::chrono::milliseconds status{1'000};
    std::chrono::milliseconds analog{2'000};
};

// What a controller takes of one telegram, where that is less than the driver puts into it. Registers, timers
// and counters are words; inputs, outputs and flags are bits.
struct TelegramLimits {
    std::optional<unsigned> readWords;
    std::optional<unsigned> readBits;
    std::optional<unsigned> writeWords;
    unsigned gap = 0; // elements in a row that a telegram may read in vain to save another telegram
};

// How long a station that does not answer is left alone: each pause is twice the one before.
struct RetryPauses {
    std::chrono::milliseconds first{5'000};
    std::chrono::milliseconds longest{60'000};
};

struct Rtu {
    int id = 0; // unique within its channel
    std::string name;
    bool enabled = true;
    unsigned station = 0;
    std::chrono::milliseconds timeout{1'000};
    TransmitType transmitType = TransmitType::Data; // serial lines; the same for all RTUs of a line
    unsigned breakDelayMs = 10;                     // likewise
    ScanTimes scan;
    TelegramLimits limits;
    unsigned attempts = 3; // how often a telegram is sent, at most, before its poll has failed
    RetryPauses retry;
    std::optional<std::chrono::milliseconds> timeSync; // how often the clock is set; none: never
    std::optional<unsigned> modbusUnit;                // its unit id for Modbus; none: by its order
    std::vector<Point> points;                         // in the order of the file
    std::string pointFile;                             // where they stand: a point table or the site file
    Place place;
};

enum class LineType { Serial, Ethernet };

struct Channel {
    int id = 0;
    std::string name;
    LineType type = LineType::Ethernet;
    LinkEnd primary;
    std::optional<LinkEnd> secondary;
    // How long an answer is expected to be on its way, beside the time of its bytes.
    std::optional<std::chrono::milliseconds> expectedAnswer;
    std::vector<Rtu> rtus;
    Place place;
};

// What members of a group may do over the control socket.
enum class ControlAccess { Read, Commands };

// The control socket, where it is not the user's alone at its usual place.
struct ControlSettings {
    std::string socket; // empty: the site file's own
    std::string group;  // empty: none
    ControlAccess access = ControlAccess::Read;
    Place groupPlace;
};

struct Site {
    std::vector<Channel> channels;
    std::string name = {}; // in topics and labels; the site file's, without its ending, where it gives none
    ControlSettings control = {};
    std::optional<ModbusSettings> modbus = {}; // none: no server
    std::optional<HttpSettings> http = {};
    std::optional<MqttSettings> mqtt = {};
    std::optional<HistorySettings> history = {}; // none: values are not recorded
};

bool hasPoints(const Rtu& rtu, PointKind kind);
std::size_t countPoints(const Rtu& rtu, PointKind kind);
bool isPulse(const Point& point);
// Whether an off command of this pulse point resets just what its on command has set.
bool isOffCommandItsRelease(const Point& point);
// What an on command of this status point writes to.
ElementAddress elementSwitchedOn(const Point& point);
// Whether the driver releases this point's output after its width: it does so when it has written 1.
bool isReleasedByDriver(const Point& point);
// Whether the host can take back what an on command of this status point has set.
bool canBeReleased(const Point& point);
// Whether controllers on such a line take the clock telegram. On Ethernet the driver sends it without its
// header: nobody takes it, and the answer that does not come costs the line its connection for a moment.
bool isClockInReach(LineType type);
constexpr const char* clockOutOfReach = "not possible on Ethernet; set the clock over a serial line";
const char* toText(LineType type); // "SBus-Serial"
const char* toText(TransmitType type);

} // namespace host
