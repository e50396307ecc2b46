#pragma once

namespace tickwise {

/// Keeps freed memory of a poll's size for the next poll, instead of asking the system for it again each time.
void keepMemoryOfPolls();

/// Returns free memory of the heap to the system.
void releaseUnusedMemory();

} // namespace tickwise
