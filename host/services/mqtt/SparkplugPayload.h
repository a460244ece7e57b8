#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// The payload of Sparkplug B as plain values, and as the bytes that a broker carries. Pure; any thread.
namespace host {

// By the numbers that travel.
enum class SparkplugType : std::uint32_t { Int32 = 3, Int64 = 4, UInt64 = 8, Double = 10, Boolean = 11 };

// The values that the standard gives the property "Quality".
enum class SparkplugQuality : std::uint32_t { Bad = 0, Good = 192, Stale = 500 };

using SparkplugValue = std::variant<bool, std::int64_t, double, std::string>;

struct SparkplugMetric {
    std::string name;                   // empty where the alias alone tells
    std::optional<std::uint64_t> alias; // of a birth's metric, unique among all of its edge node
    std::uint64_t timeMs = 0;           // since 1970, UTC
    SparkplugType type = SparkplugType::Int32;
    std::optional<SparkplugValue> value; // none: null
    bool isHistorical = false;
    std::optional<SparkplugQuality> quality;
    std::string unit; // empty: none
};

struct SparkplugPayload {
    std::uint64_t timeMs = 0;             // since 1970, UTC
    std::optional<std::uint8_t> sequence; // a death has none
    std::vector<SparkplugMetric> metrics;
};

std::string encodeSparkplug(const SparkplugPayload& payload);

// Nothing for bytes that are no payload. What an edge node has no use for is left out: sets of data,
// templates, properties. A number comes as std::int64_t or double, whichever it was sent as.
std::optional<SparkplugPayload> decodeSparkplug(const std::string& bytes);

} // namespace host
