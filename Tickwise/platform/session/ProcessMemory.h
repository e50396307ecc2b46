#pragma once

namespace tickwise {

/// Keeps freed memory of a poll's size for the next poll, instead of asking the system for it again each time.
void keepMemoryOfPolls();

/// Lets all threads allocate from one heap: those of their own would hold free memory for work that is rarely done.
/// Called before the first of them starts.
void shareHeapAmongThreads();

/// Returns free memory of the heap to the system.
void releaseUnusedMemory();

} // namespace tickwise
