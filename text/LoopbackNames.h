#pragma once

#include <string>

// Where a site is tried on one computer, without its controllers: what takes the place of its hosts and
// devices. The host and the simulator meet there with the same site file.
namespace text {

// An IPv4 address keeps its last three numbers (10.0.0.5 becomes 127.0.0.5); a name, or an address of another
// kind, becomes an address made from its letters. "localhost" and addresses of the loopback stay.
std::string loopbackHost(const std::string& host);
// "FOLDER/loopback-NAME", where NAME is the device's path with "-" for each "/".
std::string loopbackDevice(const std::string& device, const std::string& folder);

} // namespace text
