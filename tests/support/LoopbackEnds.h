#pragma once

// The ends of a site file and where both programs put them on one computer, with "/site" as the folder: the
// host's tests and the simulator's hold their own rule against the same list.
struct LoopbackEnd {
    const char* end;
    const char* onLoopback;
};

constexpr LoopbackEnd loopbackEnds[] = {
    {"udp://10.0.0.5:5050", "udp://127.0.0.5:5050"},
    {"udp://10.0.0.6:5050", "udp://127.0.0.6:5050"},
    {"udp://192.168.11.5:5051", "udp://127.168.11.5:5051"},
    {"udp://127.0.0.1:5050", "udp://127.0.0.1:5050"},
    {"udp://127.3.2.1:5050", "udp://127.3.2.1:5050"},
    {"udp://localhost:5050", "udp://localhost:5050"},
    {"udp://[::1]:5050", "udp://[::1]:5050"},
    {"udp://pump-house.plant:5050", "udp://127.20.3.90:5050"},
    {"udp://pump-house:5050", "udp://127.65.66.35:5050"},
    {"udp://[2001:db8::5]:5050", "udp://127.195.239.124:5050"},
    {"serial:/dev/ttyUSB0?baud=19200&parity=none&stop=1",
     "serial:/site/loopback-dev-ttyUSB0?baud=19200&parity=none&stop=1"},
    {"serial:COM3?baud=9600&parity=even&stop=2", "serial:/site/loopback-COM3?baud=9600&parity=even&stop=2"},
};
