#include "platform/session/ProcessMemory.h"

#include <malloc.h>

namespace tickwise {

namespace {

/// More than the longest list that an exchange sends.
constexpr int pollBytes = 2 * 1024 * 1024;

} // namespace

void keepMemoryOfPolls()
{
    mallopt(M_MMAP_THRESHOLD, pollBytes);
    mallopt(M_TRIM_THRESHOLD, pollBytes);
}

void shareHeapAmongThreads()
{
    mallopt(M_ARENA_MAX, 1);
}

void releaseUnusedMemory()
{
    malloc_trim(0);
}

} // namespace tickwise
