#include "SparkplugPayload.h"

#include <services/mqtt/sparkplug.pb.h>

namespace host {

namespace {

constexpr std::uint32_t int32Property = 3;
constexpr std::uint32_t stringProperty = 12;
// The numbers of the types whose value travels as 8, 16 or 32 bits with a sign.
constexpr std::uint32_t int8Type = 1;
constexpr std::uint32_t int16Type = 2;
constexpr std::uint32_t int32Type = 3;

void writeProperties(const SparkplugMetric& metric, sparkplug::Metric& into) {
    if (metric.quality) {
        into.mutable_properties()->add_keys("Quality");
        sparkplug::PropertyValue& value = *into.mutable_properties()->add_values();
        value.set_type(int32Property);
        value.set_int_value(static_cast<std::uint32_t>(*metric.quality));
    }
    if (!metric.unit.empty()) {
        into.mutable_properties()->add_keys("engUnit");
        sparkplug::PropertyValue& value = *into.mutable_properties()->add_values();
        value.set_type(stringProperty);
        value.set_string_value(metric.unit);
    }
}

struct ValueWriter {
    sparkplug::Metric& into;
    SparkplugType type;

    void operator()(bool value) const { into.set_boolean_value(value); }
    void operator()(std::int64_t value) const {
        if (type == SparkplugType::Int32)
            into.set_int_value(static_cast<std::uint32_t>(value));
        else
            into.set_long_value(static_cast<std::uint64_t>(value));
    }
    void operator()(double value) const { into.set_double_value(value); }
    void operator()(const std::string& value) const { into.set_string_value(value); }
};

void writeMetric(const SparkplugMetric& metric, sparkplug::Metric& into) {
    if (!metric.name.empty())
        into.set_name(metric.name);
    if (metric.alias)
        into.set_alias(*metric.alias);
    into.set_timestamp(metric.timeMs);
    into.set_datatype(static_cast<std::uint32_t>(metric.type));
    if (metric.isHistorical)
        into.set_is_historical(true);
    if (metric.value)
        std::visit(ValueWriter{into, metric.type}, *metric.value);
    else
        into.set_is_null(true);
    writeProperties(metric, into);
}

std::int64_t numberOf(const sparkplug::Metric& metric) {
    const std::uint32_t bits = metric.int_value();
    switch (metric.datatype()) {
    case int8Type:
        return static_cast<std::int8_t>(bits);
    case int16Type:
        return static_cast<std::int16_t>(bits);
    case int32Type:
        return static_cast<std::int32_t>(bits);
    default:
        return bits;
    }
}

std::optional<SparkplugValue> valueOf(const sparkplug::Metric& metric) {
    if (metric.is_null())
        return std::nullopt;
    switch (metric.value_case()) {
    case sparkplug::Metric::kIntValue:
        return numberOf(metric);
    case sparkplug::Metric::kLongValue:
        return static_cast<std::int64_t>(metric.long_value());
    case sparkplug::Metric::kFloatValue:
        return static_cast<double>(metric.float_value());
    case sparkplug::Metric::kDoubleValue:
        return metric.double_value();
    case sparkplug::Metric::kBooleanValue:
        return metric.boolean_value();
    case sparkplug::Metric::kStringValue:
        return metric.string_value();
    case sparkplug::Metric::VALUE_NOT_SET:
        break;
    }
    return std::nullopt;
}

SparkplugMetric readMetric(const sparkplug::Metric& from) {
    SparkplugMetric metric;
    metric.name = from.name();
    if (from.has_alias())
        metric.alias = from.alias();
    metric.timeMs = from.timestamp();
    metric.type = static_cast<SparkplugType>(from.datatype());
    metric.value = valueOf(from);
    metric.isHistorical = from.is_historical();
    return metric;
}

} // namespace

std::string encodeSparkplug(const SparkplugPayload& payload) {
    sparkplug::Payload message;
    message.set_timestamp(payload.timeMs);
    if (payload.sequence)
        message.set_seq(*payload.sequence);
    message.mutable_metrics()->Reserve(static_cast<int>(payload.metrics.size()));
    for (const SparkplugMetric& metric : payload.metrics)
        writeMetric(metric, *message.add_metrics());
    return message.SerializeAsString();
}

std::optional<SparkplugPayload> decodeSparkplug(const std::string& bytes) {
    sparkplug::Payload message;
    if (!message.ParseFromString(bytes))
        return std::nullopt;
    SparkplugPayload payload;
    payload.timeMs = message.timestamp();
    if (message.has_seq())
        payload.sequence = static_cast<std::uint8_t>(message.seq());
    for (const sparkplug::Metric& metric : message.metrics())
        payload.metrics.push_back(readMetric(metric));
    return payload;
}

} // namespace host
