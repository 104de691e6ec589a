// The heap and the operation lists: sizes, prefixes, books, and allocations that fail.

#include "host/heap.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "cvt/cvtr2r.h"
#include "host/op_list.h"

namespace cvt::host {
namespace {

std::uint8_t* PrefixOf(void* operation) { return static_cast<std::uint8_t*>(operation) - kBandPrefixBytes; }

TEST(Heap, KeepsBooksOfLiveBlocks) {
  const HeapUse before = heapUse;
  heapUse.peakBytes = heapUse.liveBytes;
  void* a = SioAllocSMem(100);
  void* none = SioAllocSMem(0);
  EXPECT_EQ(SioSizeSMem(a), 100U);
  EXPECT_EQ(SioSizeSMem(none), 0U);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a) % alignof(std::max_align_t), 0U);
  EXPECT_EQ(heapUse.liveBlocks, before.liveBlocks + 2);
  EXPECT_EQ(SioFreeSMem(a), 0);
  void* b = SioAllocSMem(60);
  EXPECT_EQ(heapUse.liveBytes, before.liveBytes + 60);
  EXPECT_EQ(heapUse.peakBytes, before.liveBytes + 100);
  SioFreeSMem(b);
  SioFreeSMem(none);
  EXPECT_EQ(SioFreeSMem(nullptr), 0);
  EXPECT_EQ(heapUse.liveBlocks, before.liveBlocks);
  EXPECT_EQ(heapUse.liveBytes, before.liveBytes);
}

TEST(Heap, PutsCodeAndSizeBeforeAnOperation) {
  const struct {
    const char* what;
    std::uint32_t code, size;
    bool granted;
    std::uint16_t prefix[2];
  } cases[] = {{"an empty band", kPackedBand, 12, true, {21, 12}},
               {"the largest band", kPlaneBand, 65535, true, {20, 65535}},
               {"a band larger than its prefix can tell", kPackedBand, 65536, false, {}},
               {"planes larger than that", kPlaneBand, 65536, false, {}},
               {"another operation tells the low bits", 7, 65536 + 5, true, {7, 5}},
               {"a size that would wrap", 7, 0xFFFFFFFD, false, {}}};
  for (const auto& c : cases) {
    const HeapUse before = heapUse;
    void* operation = SioCreateOp(c.code, c.size);
    ASSERT_EQ(operation != nullptr, c.granted) << c.what;
    if (!c.granted) continue;
    EXPECT_EQ(std::memcmp(PrefixOf(operation), c.prefix, 4), 0) << c.what;
    EXPECT_EQ(heapUse.liveBytes, before.liveBytes + c.size + 4) << c.what;
    SioFreeSMem(PrefixOf(operation));
  }
}

TEST(OpList, OwnsWhatItTookAndReportsWhatItCouldNotTake) {
  const HeapUse before = heapUse;
  tagOpList list;
  std::vector<void*> put;
  for (std::uint32_t i = 0; i < 40; ++i) {
    void* operation = SioCreateOp(i, 8);
    put.push_back(operation);
    SioPutOp(&list, &operation);
    EXPECT_EQ(operation, nullptr);
  }
  EXPECT_EQ(std::vector<void*>(list.operations, list.operations + list.count), put);
  EXPECT_EQ(SioGetOpError(&list), 0);
  EmptyOpList(&list);
  EXPECT_EQ(list.count, 0U);

  void* operation = SioCreateOp(1, 8);
  void* const kept = operation;
  heapUse.failIn = 1;
  SioPutOp(&list, &operation);
  EXPECT_EQ(operation, kept);
  EXPECT_EQ(SioGetOpError(&list), kSioListNoMemory);
  SioFreeSMem(PrefixOf(kept));
  EmptyOpList(&list);
  EXPECT_EQ(heapUse.liveBlocks, before.liveBlocks);
}

TEST(OpList, TakesACopyOfABandOrTellsWhyNot) {
  const HeapUse before = heapUse;
  tagOpList list;
  auto* band = static_cast<tagRasterPacked*>(SioCreateOp(kPackedBand, kBandHeaderBytes));
  *band = {1, 2, 3, 0, 8, 0x0909};
  EXPECT_EQ(PutBandCopy(nullptr, band), kSioListClosed);
  for (int failing : {1, 2}) {  // the copy, the list's room
    heapUse.failIn = failing;
    EXPECT_EQ(PutBandCopy(&list, band), kSioListNoMemory);
  }
  EXPECT_EQ(PutBandCopy(&list, band), 0);
  ASSERT_EQ(list.count, 1U);
  EXPECT_NE(list.operations[0], band);
  EXPECT_EQ(std::memcmp(PrefixOf(list.operations[0]), PrefixOf(band), 16), 0);
  SioFreeSMem(PrefixOf(band));
  EmptyOpList(&list);
  EXPECT_EQ(heapUse.liveBlocks, before.liveBlocks);
}

TEST(HeapWatch, SweepsUpWhatAFailureLeftAndNothingElse) {
  const std::int64_t before = heapUse.liveBlocks;
  void* earlier = SioAllocSMem(10);
  HeapWatch outer, inner;
  BeginWatch(&outer);
  void* left = SioAllocSMem(20);
  BeginWatch(&inner);
  void* released = SioAllocSMem(30);
  void* kept = SioAllocSMem(40);
  void* alsoKept = SioAllocSMem(50);
  SioFreeSMem(released);
  EndWatch(&inner, false);
  EXPECT_EQ(heapUse.liveBlocks, before + 4);
  SioFreeSMem(left);
  SioAllocSMem(60);
  void* between = SioAllocSMem(70);
  SioAllocSMem(80);
  SioFreeSMem(between);
  SioFreeSMem(earlier);
  EndWatch(&outer, true);
  EXPECT_EQ(heapUse.liveBlocks, before + 2);  // the two that the inner watch let live on
  SioFreeSMem(kept);
  SioFreeSMem(alsoKept);
}

}  // namespace
}  // namespace cvt::host
