#pragma once

#include <cstdint>
#include <string>

// A history that SQLite can make nothing of any more.
namespace host {

// Whether the file was once a history, by what is left of its header. Any other file is none of ours to move.
bool wasHistory(const std::string& path);

// Gives the file, and what belongs to it, another name beside it: "history.db.damaged-20261122T093000Z".
// Returns that name; empty when the system refuses.
std::string moveAside(const std::string& path, std::int64_t timeMs);

} // namespace host
