#include "HeapUse.h"

#include <malloc.h>

std::size_t heapBytes() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}
