#include "MosquittoClient.h"

#include "BrokerWords.h"
#include "SocketWait.h"
#include "runtime/Secret.h"

#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;

// With so many the next messages can go out, and an exchange ends before its time.
constexpr std::size_t manyAcknowledged = 256;

constexpr int firstFailure = 0x80; // among the reason codes of MQTT

// Once for the process; it is never given back.
void initLibrary() {
    static std::once_flag once;
    std::call_once(once, [] { mosquitto_lib_init(); });
}

// The list of a message's properties in MQTT 5, given back at the end.
class PropertyList {
public:
    PropertyList() = default;
    PropertyList(const PropertyList&) = delete;
    PropertyList& operator=(const PropertyList&) = delete;
    ~PropertyList() { mosquitto_property_free_all(&list); }

    void addText(int kind, const std::string& text) {
        if (!text.empty())
            mosquitto_property_add_string(&list, kind, text.c_str());
    }
    void addBytes(int kind, const std::string& bytes) {
        if (!bytes.empty())
            mosquitto_property_add_binary(&list, kind, bytes.data(),
                                          static_cast<std::uint16_t>(bytes.size()));
    }
    // Of what a message carries.
    void addOf(const MqttMessage& message) {
        addText(MQTT_PROP_CONTENT_TYPE, message.contentType);
        addText(MQTT_PROP_RESPONSE_TOPIC, message.responseTopic);
        addBytes(MQTT_PROP_CORRELATION_DATA, message.correlation);
    }
    const mosquitto_property* get() const { return list; }
    // For who takes it over.
    mosquitto_property* release() { return std::exchange(list, nullptr); }

private:
    mosquitto_property* list = nullptr;
};

std::string responseTopicOf(const mosquitto_property* properties) {
    char* text = nullptr;
    if (mosquitto_property_read_string(properties, MQTT_PROP_RESPONSE_TOPIC, &text, false) == nullptr)
        return {};
    const std::unique_ptr<char, decltype(&std::free)> owned(text, &std::free);
    return owned ? std::string(owned.get()) : std::string();
}

std::string correlationOf(const mosquitto_property* properties) {
    void* bytes = nullptr;
    std::uint16_t size = 0;
    if (mosquitto_property_read_binary(properties, MQTT_PROP_CORRELATION_DATA, &bytes, &size, false) ==
        nullptr)
        return {};
    const std::unique_ptr<void, decltype(&std::free)> owned(bytes, &std::free);
    return owned ? std::string(static_cast<const char*>(owned.get()), size) : std::string();
}

// Another connection would not take it either.
bool isFaultOfMessage(int result) {
    switch (result) {
    case MOSQ_ERR_INVAL:
    case MOSQ_ERR_PAYLOAD_SIZE:
    case MOSQ_ERR_MALFORMED_UTF8:
    case MOSQ_ERR_QOS_NOT_SUPPORTED:
    case MOSQ_ERR_RETAIN_NOT_SUPPORTED:
    case MOSQ_ERR_OVERSIZE_PACKET:
        return true;
    default:
        return false;
    }
}

std::string fileFault(const std::string& key, const std::string& path) {
    std::error_code error;
    if (path.empty() || std::filesystem::is_regular_file(std::filesystem::u8path(path), error))
        return {};
    return key + " \"" + path + "\" is no file that can be read";
}

} // namespace

struct MosquittoClient::Callbacks {
    static MosquittoClient& of(void* object) { return *static_cast<MosquittoClient*>(object); }

    static void connected(mosquitto*, void* object, int code, int, const mosquitto_property*) {
        MosquittoClient& client = of(object);
        if (code == 0)
            client.happened.hasConnected = true;
        else
            client.happened.failure = connectionRefusal(code, client.isV5());
    }
    static void disconnected(mosquitto*, void* object, int reason, const mosquitto_property*) {
        MosquittoClient& client = of(object);
        if (!client.happened.failure.empty())
            return;
        if (reason == MOSQ_ERR_KEEPALIVE)
            client.happened.failure = client.failureText(reason);
        else if (client.isV5() && reason >= firstFailure)
            client.happened.failure = disconnection(reason);
    }
    static void published(mosquitto*, void* object, int id, int reason, const mosquitto_property*) {
        MosquittoClient& client = of(object);
        client.happened.acknowledged.push_back(id);
        if (reason < firstFailure)
            return;
        ++client.happened.refused;
        client.happened.refusal = messageRefusal(reason);
    }
    static void subscribed(mosquitto*, void* object, int, int count, const int* granted,
                           const mosquitto_property*) {
        if (std::any_of(granted, granted + count, [](int one) { return one >= firstFailure; }))
            of(object).happened.refusal =
                "this client may not hear commands; look at the broker's rules for this user";
    }
    static void received(mosquitto*, void* object, const mosquitto_message* message,
                         const mosquitto_property* properties) {
        MqttMessage copy;
        copy.topic = message->topic;
        copy.payload.assign(static_cast<const char*>(message->payload),
                            static_cast<std::size_t>(message->payloadlen));
        copy.qos = message->qos;
        copy.isRetained = message->retain;
        copy.responseTopic = responseTopicOf(properties);
        copy.correlation = correlationOf(properties);
        of(object).happened.messages.push_back(std::move(copy));
    }
    static void logged(mosquitto*, void* object, int level, const char* text) {
        if (level == MOSQ_LOG_ERR)
            of(object).lastError = text;
    }
    // A key that is encrypted would have the library ask at the terminal.
    static int keyPassword(char*, int, int, void*) { return 0; }
};

MosquittoClient::MosquittoClient(const MqttSettings& mqttSettings, std::string id)
    : settings(mqttSettings), clientId(std::move(id)) {
    initLibrary();
}

MosquittoClient::~MosquittoClient() {
    if (handle != nullptr)
        mosquitto_destroy(handle);
}

std::string MosquittoClient::connect(const MqttMessage& will) {
    // A clean session: commands of the time when this client was away are not carried out later.
    handle = mosquitto_new(clientId.c_str(), true, this);
    if (handle == nullptr)
        return "client_id \"" + clientId + "\" is no name for a client; give another";
    std::string fault = setUp(will);
    if (fault.empty())
        lookup.emplace(settings.broker.host);
    return fault;
}

std::string MosquittoClient::setUp(const MqttMessage& will) {
    mosquitto_int_option(handle, MOSQ_OPT_PROTOCOL_VERSION, isV5() ? MQTT_PROTOCOL_V5 : MQTT_PROTOCOL_V311);
    mosquitto_int_option(handle, MOSQ_OPT_TCP_NODELAY, 1);
    mosquitto_max_inflight_messages_set(handle, mostInFlight);
    setCallbacks();
    PropertyList properties;
    if (isV5())
        properties.addOf(will);
    mosquitto_property* list = properties.release(); // the library's, where it takes the will
    if (mosquitto_will_set_v5(handle, will.topic.c_str(), static_cast<int>(will.payload.size()),
                              will.payload.data(), will.qos, will.isRetained, list) != MOSQ_ERR_SUCCESS) {
        mosquitto_property_free_all(&list);
        return "\"" + will.topic + "\" is no topic; look at prefix and at the site's name";
    }
    std::string fault = setCredentials();
    return fault.empty() && settings.broker.isSecure ? setTls() : fault;
}

std::string MosquittoClient::setCredentials() {
    if (settings.user.empty())
        return {};
    Secret password{std::string(), {}};
    if (settings.password)
        password = readSecret(*settings.password);
    if (!password.text)
        return "there is no password: " + password.fault;
    mosquitto_username_pw_set(handle, settings.user.c_str(),
                              settings.password ? password.text->c_str() : nullptr);
    return {};
}

std::string MosquittoClient::setTls() {
    for (const auto& [key, path] :
         {std::pair{"ca_file", settings.caFile}, std::pair{"certificate", settings.certificate},
          std::pair{"key_file", settings.keyFile}})
        if (std::string fault = fileFault(key, path); !fault.empty())
            return fault;
    if (!settings.keyFile.empty())
        if (std::string fault = findSecretFileFault(settings.keyFile); !fault.empty())
            return fault;
    if (settings.caFile.empty())
        mosquitto_int_option(handle, MOSQ_OPT_TLS_USE_OS_CERTS, 1);
    const auto orNone = [](const std::string& path) { return path.empty() ? nullptr : path.c_str(); };
    const int result =
        mosquitto_tls_set(handle, orNone(settings.caFile), nullptr, orNone(settings.certificate),
                          orNone(settings.keyFile), &Callbacks::keyPassword);
    if (result != MOSQ_ERR_SUCCESS)
        return std::string("ca_file, certificate and key_file cannot be used: ") + mosquitto_strerror(result);
    mosquitto_tls_opts_set(handle, 1, "tlsv1.2", nullptr);
    return {};
}

void MosquittoClient::setCallbacks() {
    mosquitto_connect_v5_callback_set(handle, &Callbacks::connected);
    mosquitto_disconnect_v5_callback_set(handle, &Callbacks::disconnected);
    mosquitto_publish_v5_callback_set(handle, &Callbacks::published);
    mosquitto_subscribe_v5_callback_set(handle, &Callbacks::subscribed);
    mosquitto_message_v5_callback_set(handle, &Callbacks::received);
    mosquitto_log_callback_set(handle, &Callbacks::logged);
}

void MosquittoClient::exchange(std::chrono::milliseconds time, BrokerEvents& events) {
    const Clock::time_point end = Clock::now() + time;
    do {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        exchangeOnce(std::max(left, std::chrono::milliseconds(0)), happened);
    } while (happened.failure.empty() && happened.acknowledged.size() < manyAcknowledged &&
             Clock::now() < end);
    events = std::exchange(happened, {});
}

void MosquittoClient::exchangeOnce(std::chrono::milliseconds time, BrokerEvents& events) {
    if (lookup) {
        open(events);
        return;
    }
    const int socket = mosquitto_socket(handle);
    if (socket < 0) {
        fail(MOSQ_ERR_CONN_LOST, events);
        return;
    }
    const SocketReadiness ready = waitForSocket(socket, mosquitto_want_write(handle), time);
    int result = MOSQ_ERR_SUCCESS;
    if (ready.canRead)
        result = mosquitto_loop_read(handle, 1);
    if (result == MOSQ_ERR_SUCCESS && ready.canWrite)
        result = mosquitto_loop_write(handle, 1);
    if (result == MOSQ_ERR_SUCCESS)
        result = mosquitto_loop_misc(handle);
    fail(result, events);
}

// Once the address is known: the library asks for it again, and the system has the answer at hand.
void MosquittoClient::open(BrokerEvents& events) {
    if (!lookup->isOver()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return;
    }
    const std::string fault = lookup->fault();
    lookup.reset();
    if (!fault.empty()) {
        events.failure =
            "no address for " + settings.broker.host + " (" + fault + "); look at the name in url";
        return;
    }
    const int result = mosquitto_connect_async(handle, settings.broker.host.c_str(), settings.broker.port,
                                               static_cast<int>(settings.keepAlive.count()));
    fail(result, events);
}

void MosquittoClient::fail(int result, BrokerEvents& events) {
    if (result != MOSQ_ERR_SUCCESS && events.failure.empty())
        events.failure = failureText(result);
}

std::string MosquittoClient::failureText(int result) const {
    switch (result) {
    case MOSQ_ERR_CONN_LOST:
    case MOSQ_ERR_NO_CONN:
        return "the connection is lost; look whether the broker runs, and at the network";
    case MOSQ_ERR_CONN_REFUSED:
        return "the broker refuses the connection; look at its log";
    case MOSQ_ERR_KEEPALIVE:
        return "the broker does not answer any more; look at the broker and at the network";
    case MOSQ_ERR_EAI:
        return "no address for " + settings.broker.host + "; look at the name in url";
    case MOSQ_ERR_TLS:
    case MOSQ_ERR_TLS_HANDSHAKE:
        return "TLS fails (" + (lastError.empty() ? mosquitto_strerror(result) : lastError) +
               "); look at ca_file, certificate and key_file, and at the broker's";
    case MOSQ_ERR_ERRNO:
        return "no connection (" + std::string(mosquitto_strerror(result)) +
               "); look whether the broker runs, and at the url";
    default:
        return std::string(mosquitto_strerror(result)) + "; look at the broker's log";
    }
}

void MosquittoClient::subscribe(const Subscription& subscription) {
    // What is retained comes with its mark, also while this client is connected, or not at all.
    const int before =
        subscription.wantsRetained ? MQTT_SUB_OPT_SEND_RETAIN_ALWAYS : MQTT_SUB_OPT_SEND_RETAIN_NEVER;
    const int options = isV5() ? MQTT_SUB_OPT_RETAIN_AS_PUBLISHED | before : 0;
    mosquitto_subscribe_v5(handle, nullptr, subscription.filter.c_str(), 1, options, nullptr);
}

Publication MosquittoClient::publish(const MqttMessage& message) {
    PropertyList properties;
    if (isV5())
        properties.addOf(message);
    int id = 0;
    const int result =
        mosquitto_publish_v5(handle, &id, message.topic.c_str(), static_cast<int>(message.payload.size()),
                             message.payload.data(), message.qos, message.isRetained, properties.get());
    if (result == MOSQ_ERR_SUCCESS)
        return {Publication::Fate::Sent, id};
    if (isFaultOfMessage(result))
        return {Publication::Fate::NeverSendable};
    fail(result, happened);
    return {Publication::Fate::ConnectionOver};
}

void MosquittoClient::disconnect() {
    mosquitto_disconnect_v5(handle, 0, nullptr);
}

} // namespace host
