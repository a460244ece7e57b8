#include "BrokerWords.h"

#include <algorithm>
#include <iterator>

namespace host {

namespace {

struct Words {
    int code;
    const char* text;
};

constexpr const char* wrongPassword = "the broker refuses user and password; look at user and password_file";
constexpr const char* notAllowed =
    "the broker does not let this client in; look at user, password_file, certificate and client_id, and at "
    "the broker's rules";
constexpr const char* wrongId = "the broker refuses the client's name; give another client_id";
constexpr const char* wrongVersion =
    "the broker does not speak this version of MQTT; give version = \"3.1.1\"";
constexpr const char* unavailable = "the broker is not ready; look at its log";

constexpr Words v311Refusals[] = {
    {1, wrongVersion}, {2, wrongId}, {3, unavailable}, {4, wrongPassword}, {5, notAllowed},
};

constexpr Words v5Reasons[] = {
    {0x81, "the broker takes the packet for malformed"},
    {0x82, "the broker takes it for an error of the protocol"},
    {0x84, wrongVersion},
    {0x85, wrongId},
    {0x86, wrongPassword},
    {0x87, notAllowed},
    {0x88, unavailable},
    {0x89, "the broker is too busy; look at its load"},
    {0x8A, "the broker has banned this client; look at its rules"},
    {0x8B, "the broker is being shut down"},
    {0x8D, "the broker has heard nothing for too long; look at the network"},
    {0x8E, "another client has connected under the same client_id; give each its own"},
    {0x90, "the broker takes no messages of this topic; look at prefix and at its rules"},
    {0x95, "the message is larger than the broker takes; look at its limits"},
    {0x97, "the broker's quota is used up; look at its limits"},
    {0x98, "an administrator of the broker has ended the connection"},
    {0x9A, "the broker keeps no retained messages, which this layout needs; allow them"},
    {0x9B, "the broker does not take this qos; give qos = 0"},
    {0x9F, "too many connections; look at the broker's limits"},
};

template <std::size_t count>
std::string wordsOf(const Words (&words)[count], int code, const std::string& what) {
    const auto* const found = std::find_if(std::begin(words), std::end(words),
                                           [code](const Words& one) { return one.code == code; });
    return found == std::end(words) ? what + " with code " + std::to_string(code) + "; look at its log"
                                    : found->text;
}

} // namespace

std::string connectionRefusal(int code, bool isV5) {
    const std::string what = "the broker refuses the connection";
    return isV5 && code >= 0x80 ? wordsOf(v5Reasons, code, what) : wordsOf(v311Refusals, code, what);
}

std::string messageRefusal(int reason) {
    if (reason == 0x87)
        return "this client may not publish there; look at the broker's rules for this user";
    return wordsOf(v5Reasons, reason, "the broker refuses a message");
}

std::string disconnection(int reason) {
    return wordsOf(v5Reasons, reason, "the broker has ended the connection");
}

} // namespace host
