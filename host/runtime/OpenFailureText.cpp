#include "OpenFailureText.h"

#include "DeviceGroup.h"

#include <SystemText.h>

#include <algorithm>
#include <iterator>
#include <system_error>

namespace host {

namespace {

bool isOneOf(const std::error_code& error, std::initializer_list<std::errc> conditions) {
    return std::any_of(conditions.begin(), conditions.end(),
                       [&error](std::errc condition) { return error == condition; });
}

std::string otherReason(const std::error_code& error, const char* remedy) {
    return text::systemText(error) + " (error " + std::to_string(error.value()) + "); " + remedy;
}

std::string deniedReason(const std::string& device) {
    const std::string group = groupThatMayOpen(device);
    const std::string denied = "this user may not open " + device + "; ";
    if (group.empty())
        return denied + "see that it may, or that no other program has it open";
    return denied + "its group is \"" + group + "\": add the user to it (sudo usermod -aG " + group +
           " USER) and log in again";
}

std::string settingsText(const SerialEnd& end) {
    const std::string text = toText(LinkEnd(end));
    return text.substr(text.find('?') + 1);
}

std::string reasonFor(const SerialEnd& end, const std::error_code& error) {
    using std::errc;
    if (isOneOf(error,
                {errc::no_such_file_or_directory, errc::no_such_device, errc::no_such_device_or_address}))
        return "there is no device " + end.device + "; plug it in, or name the one that is there";
    if (isInUse(error.value()))
        return "another program has " + end.device + " open; end that program, or name another device";
    if (isOneOf(error, {errc::permission_denied, errc::operation_not_permitted}))
        return deniedReason(end.device);
    if (isOneOf(error, {errc::inappropriate_io_control_operation, errc::is_a_directory}))
        return end.device + " is no serial device; name one";
    if (isOneOf(error, {errc::invalid_argument}))
        return end.device + " does not do " + settingsText(end) + "; choose a baud rate that it supports";
    if (isOneOf(error, {errc::io_error}))
        return end.device + " has no working hardware behind it; name another device";
    return otherReason(error, "check the device");
}

std::string reasonFor(const UdpEnd& end, const std::error_code& error) {
    if (isUnreachable(error.value()))
        return "no address is known for " + end.host +
               ", or no network leads there; check the host name and the network";
    return otherReason(error, "check the host name and the network");
}

} // namespace

std::string cannotOpenReason(const LinkEnd& end, int result) {
    const std::error_code error(result, std::system_category());
    return "cannot open " + toText(end) + ": " +
           std::visit([&error](const auto& one) { return reasonFor(one, error); }, end);
}

} // namespace host
