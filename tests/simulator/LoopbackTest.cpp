#include "Loopback.h"
#include "LoopbackEnds.h"

#include <gtest/gtest.h>

using namespace sim;

namespace {

// As the list writes it, without the settings of a serial line.
std::string textOf(const EndPoint& end) {
    if (end.kind == EndPoint::Kind::Serial)
        return "serial:" + end.path;
    const bool isBracketed = end.host.find(':') != std::string::npos;
    return "udp://" + (isBracketed ? '[' + end.host + ']' : end.host) + ':' + std::to_string(end.port);
}

} // namespace

TEST(Loopback, HasAPlaceForEveryEnd) {
    for (const LoopbackEnd& one : loopbackEnds) {
        EndPoint end;
        std::string error;
        ASSERT_TRUE(parseEndPoint(one.end, end, error)) << one.end << ": " << error;
        const std::string expected = one.onLoopback;
        EXPECT_EQ(textOf(onLoopback(end, "/site")), expected.substr(0, expected.find('?')));
    }
}

TEST(Loopback, TakesBothEndsOfALine) {
    Site site;
    site.lines.push_back(udpLine(1, {5}, 5050));
    site.lines[0].primary.host = "10.0.0.5";
    site.lines[0].secondary = site.lines[0].primary;
    site.lines[0].secondary->host = "10.0.0.6";
    site = onLoopback(site, "/site");
    EXPECT_EQ(site.lines[0].primary.host, "127.0.0.5");
    EXPECT_EQ(site.lines[0].secondary->host, "127.0.0.6");
}
