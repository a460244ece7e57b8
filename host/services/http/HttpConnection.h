#pragma once

#include "HttpOffice.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>

namespace host {

// Serves a client that has just connected. The office outlives it.
void serveInClear(HttpOffice& office, boost::asio::ip::tcp::socket socket);
void serveWithTls(HttpOffice& office, boost::asio::ip::tcp::socket socket, boost::asio::ssl::context& tls);

} // namespace host
