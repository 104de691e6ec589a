// The heap: blocks that know their size, over malloc.

#include "host/heap.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "cvt/host.h"
#include "host/bits.h"

namespace cvt::host {

constinit thread_local HeapUse heapUse;

namespace {

constinit thread_local HeapWatch* currentWatch = nullptr;

// Stands in front of every block; its alignment is malloc's, so that blocks keep it.
struct alignas(std::max_align_t) BlockHeader {
  std::uint32_t size;
  HeapWatch* watch;  // that notes the block, or null
  BlockHeader* older;
  BlockHeader* newer;
};

BlockHeader* HeaderOf(void* block) { return static_cast<BlockHeader*>(block) - 1; }
BlockHeader* NewestOf(const HeapWatch* watch) { return static_cast<BlockHeader*>(watch->newest); }

void Link(BlockHeader* header) {
  header->watch = currentWatch;
  if (currentWatch == nullptr) return;
  header->newer = nullptr;
  header->older = NewestOf(currentWatch);
  if (header->older != nullptr) header->older->newer = header;
  currentWatch->newest = header;
}

void Unlink(BlockHeader* header) {
  if (header->watch == nullptr) return;
  if (header->older != nullptr) header->older->newer = header->newer;
  if (header->newer != nullptr) header->newer->older = header->older;
  if (header->watch->newest == header) header->watch->newest = header->older;
  header->watch = nullptr;
}

void NoteTaken(std::uint32_t size) {
  ++heapUse.liveBlocks;
  heapUse.liveBytes += size;
  if (heapUse.liveBytes > heapUse.peakBytes) heapUse.peakBytes = heapUse.liveBytes;
}

void NoteReleased(std::uint32_t size) {
  --heapUse.liveBlocks;
  heapUse.liveBytes -= size;
}

}  // namespace

void BeginWatch(HeapWatch* watch) {
  *watch = {nullptr, currentWatch};
  currentWatch = watch;
}

void EndWatch(HeapWatch* watch, bool release) {
  while (BlockHeader* header = NewestOf(watch)) {
    watch->newest = header->older;
    header->watch = nullptr;  // no block of the watch is looked at again
    if (release) SioFreeSMem(header + 1);
  }
  currentWatch = watch->outer;
}

}  // namespace cvt::host

using namespace cvt::host;

void* CVT_CALL SioAllocSMem(std::uint32_t size) {
  if (heapUse.failIn != 0 && --heapUse.failIn == 0) return nullptr;
  const std::size_t bytes = sizeof(BlockHeader) + std::size_t{size};
  if (bytes < size) return nullptr;  // wrapped: no machine with such a small size_t has that much
  auto* header = static_cast<BlockHeader*>(std::malloc(bytes));
  if (header == nullptr) return nullptr;
  header->size = size;
  Link(header);
  NoteTaken(size);
  return header + 1;
}

std::uint32_t CVT_CALL SioSizeSMem(void* block) { return HeaderOf(block)->size; }

std::int16_t CVT_CALL SioFreeSMem(void* block) {
  if (block == nullptr) return 0;
  Unlink(HeaderOf(block));
  NoteReleased(HeaderOf(block)->size);
  std::free(HeaderOf(block));
  return 0;
}

void* CVT_CALL SioCreateOp(std::uint32_t code, std::uint32_t size) {
  // The prefix tells 16 bits of the size, and readers of a band go by it: a larger band would be misread.
  const bool isBand = code == kPlaneBand || code == kPackedBand;
  const std::uint32_t most = isBand ? 0xFFFFU : 0xFFFFFFFFU - kBandPrefixBytes;
  if (size > most) return nullptr;
  auto* prefix = static_cast<std::uint8_t*>(SioAllocSMem(size + kBandPrefixBytes));
  if (prefix == nullptr) return nullptr;
  const std::uint16_t words[2] = {Low16(code), Low16(size)};
  std::memcpy(prefix, words, sizeof words);
  return prefix + kBandPrefixBytes;
}
