#pragma once

#include "Site.h"

namespace host {

class TomlTable;

// The keys of an RTU that tell what its controller can do and how often it is asked: max_read_words,
// max_read_bits, max_write_words, single_writes, max_gap, attempts, retry.
void readStationKeys(TomlTable& table, Rtu& rtu, Findings& findings);

} // namespace host
