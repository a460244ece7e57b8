#pragma once

#include "SparkplugNames.h"
#include "SparkplugPayload.h"
#include "values/ValueStore.h"

#include <functional>
#include <string>
#include <vector>

namespace host {

// A message for the broker; never retained.
struct SparkplugMessage {
    std::string topic;
    std::string payload;
    int qos = 0;
};
using SparkplugMessages = std::vector<SparkplugMessage>;

// What somebody asks of the edge node by NCMD or DCMD.
struct SparkplugOrder {
    bool isRebirth = false;
    std::vector<std::pair<PointIndex, SparkplugValue>> values;
    std::vector<std::string> faults; // what of it cannot be understood
};

// An edge node of Sparkplug B as its broker sees it: which message follows which, with which numbers. Pure:
// what is to be sent is returned, in its order; times are milliseconds since 1970 and come from the caller.
// One thread.
//
// States: away, waiting (connected; the primary host is not there), born. Data is sent while it is born.
// Whoever keeps changes meanwhile gives them to data() as historical ones once births have gone out, and then
// calls deaths(): between the two every device is born, so that what was kept of a dead one arrives too.
//
// A device whose point brings a good value is alive, whatever was said of it before.
class SparkplugSession {
public:
    struct Settings {
        SparkplugNames names;
        std::string primaryHost = {}; // its id; empty: none is waited for
    };
    using StateOf = std::function<PointState(PointIndex)>;

    // `lastBirthDeathSequence` is that of the last connection, of an earlier process too. The table outlives
    // it.
    SparkplugSession(Settings sessionSettings, const PointTable& pointTable, StateOf stateOfPoint,
                     std::uint8_t lastBirthDeathSequence);

    // Before each connection: raises birthDeathSequence(), which the caller keeps before it connects, and
    // gives the last will.
    SparkplugMessage beginConnection(std::uint64_t nowMs);
    std::uint8_t birthDeathSequence() const { return birthDeath; }
    // To be made, with QoS 1, before connected() is called.
    std::vector<std::string> subscriptions() const;
    // Births, where no primary host is waited for.
    SparkplugMessages connected(std::uint64_t nowMs);
    void disconnected() { state = State::Away; }
    bool isBorn() const { return state == State::Born; }

    // What a primary host says of itself on its topic. Births when it has come; the node's death when it has
    // gone: then the caller ends the connection in order once the message is out, and connects anew. Texts of
    // older versions of the standard, and those of an earlier session of the host, change nothing.
    SparkplugMessages hostSaid(const std::string& json, std::uint64_t nowMs);
    // All births anew, with the values and qualities of now. Nothing when it is not born.
    SparkplugMessages rebirth(std::uint64_t nowMs);
    SparkplugMessages data(const std::vector<PointChange>& changes, bool isHistorical, std::uint64_t nowMs);
    // Of the RTU at this place among the table's blocks.
    SparkplugMessages deviceDied(std::size_t place, std::uint64_t nowMs);
    SparkplugMessages deviceReturned(std::size_t place, std::uint64_t nowMs);
    // Behind births and what was kept: the deaths of all devices that are dead.
    SparkplugMessages caughtUp(std::uint64_t nowMs);
    // For an end in order, before the connection is ended.
    SparkplugMessage death(std::uint64_t nowMs) const;

    const std::string& deviceOf(PointIndex index) const;
    SparkplugOrder orderOf(const std::string& topic, const std::string& payload) const;

private:
    enum class State { Away, Waiting, Born };
    struct Device {
        std::string name;
        bool isAlive = false; // as its RTU is
        bool isBorn = false;  // as the broker was told
    };

    SparkplugMessages births(std::uint64_t nowMs);
    SparkplugMessage nodeBirth(std::uint64_t nowMs);
    SparkplugMessage deviceBirth(std::size_t place, std::uint64_t nowMs);
    SparkplugMessage deviceDeath(std::size_t place, std::uint64_t nowMs);
    SparkplugMessage deviceMessage(const char* kind, std::size_t place, SparkplugPayload payload);
    SparkplugMetric metricOf(PointIndex index, const PointState& pointState, std::uint64_t nowMs) const;
    void readOrder(const SparkplugMetric& metric, std::size_t place, SparkplugOrder& into) const;

    const Settings settings;
    const PointTable& points;
    const StateOf stateOf;
    std::vector<Device> devices; // in the order of the table's blocks
    State state = State::Away;
    bool isCaughtUp = false;
    std::uint8_t birthDeath;
    std::uint8_t sequence = 0;         // of the next message of a born node
    std::uint64_t hostOnlineSince = 0; // what the primary host gave with its last word that it is there
};

} // namespace host
