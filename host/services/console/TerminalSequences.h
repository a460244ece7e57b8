#pragma once

// Escape sequences that every terminal of today knows.
namespace host::terminal {

constexpr char enterScreen[] = "\x1b[?1049h\x1b[?25l"; // a screen of its own, without a cursor
constexpr char leaveScreen[] = "\x1b[?25h\x1b[?1049l";
constexpr char home[] = "\x1b[H";
constexpr char clearLineEnd[] = "\x1b[K";
constexpr char clearBelow[] = "\x1b[J";
constexpr char bold[] = "\x1b[1m";
constexpr char red[] = "\x1b[31m";
constexpr char dim[] = "\x1b[2m";
constexpr char reverse[] = "\x1b[7m";
constexpr char plain[] = "\x1b[0m";

} // namespace host::terminal
