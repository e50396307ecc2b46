#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class QIODevice;

namespace tickwise {

/// A piece of the address space.
struct MemoryRange
{
    std::uintptr_t begin = 0;
    std::size_t bytes = 0;

    bool operator==(const MemoryRange &) const = default;
};

/// The mappings of files, in the text of /proc/<pid>/smaps, that nobody can write and that hold nothing but what the
/// file holds: no relocated, patched or written page, neither in memory nor swapped out.
std::vector<MemoryRange> cleanFileMappings(QIODevice &smaps);

/// Keeps freed memory of a poll's size for the next poll, instead of asking the system for it again each time.
void keepMemoryOfPolls();

/// Gives back what the process does not use at present: free memory, and the unwritten pages of program and libraries.
/// Those that are needed again come back from the page cache with their first use; those that only the start needed
/// stay away.
void releaseUnusedMemory();

} // namespace tickwise
