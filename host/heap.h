// The heap's books: what this thread holds, and how a test makes an allocation fail.
#pragma once

#include <cstdint>

namespace cvt::host {

/// Blocks that a thread took minus blocks that it gave back; a block that changes threads shows in both.
struct HeapUse {
  std::int64_t liveBlocks = 0;
  std::int64_t liveBytes = 0;
  std::int64_t peakBytes = 0;  // most live bytes so far; set it to liveBytes to measure anew
  std::int64_t failIn = 0;     // n: the n-th allocation from now fails, only that one; 0: none does
};

extern constinit thread_local HeapUse heapUse;

/// What a stretch of work took from the heap and has not given back. Routines may leave blocks behind when
/// they fail; whoever runs them watches, and sweeps up.
struct HeapWatch {
  void* newest = nullptr;      // the watched block taken last; they are linked
  HeapWatch* outer = nullptr;  // the watch that this one interrupts
};

/// From now on the blocks that this thread takes are noted by `watch`, which must stay where it is.
void BeginWatch(HeapWatch* watch);

/// Ends the watch that began last. `release`: noted blocks that were not given back are released now;
/// otherwise they live on.
void EndWatch(HeapWatch* watch, bool release);

}  // namespace cvt::host
