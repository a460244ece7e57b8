#include "OutputReader.h"

#include <windows.h>

namespace outputreader {

// A write of nothing fails once the other side is closed.
bool isGone() {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD written = 0;
    return GetFileType(output) == FILE_TYPE_PIPE && WriteFile(output, "", 0, &written, nullptr) == 0;
}

} // namespace outputreader
