// Heap, descriptor copies and operation lists of the scripted host.
#include <cstring>

#include "tests/scripted/prefix.h"
#include "tests/scripted/world.h"

using cvt::test::Block;
using cvt::test::BlockKind;
using cvt::test::Call;
using cvt::test::World;

void* CVT_CALL SioAllocSMem(std::uint32_t size) {
  World& here = World::Here();
  const bool fails = ++here.allocs == here.script.failAllocAt;
  void* block = fails ? nullptr : here.Take(size, BlockKind::Heap);
  here.Note(Call::Alloc, {size, here.Identify(block)});
  return block;
}

std::uint32_t CVT_CALL SioSizeSMem(void* block) {
  World& here = World::Here();
  here.Note(Call::Size, {here.Identify(block)});
  const Block* found = here.Holding(block);
  return found == nullptr ? 0 : found->size;
}

std::int16_t CVT_CALL SioFreeSMem(void* block) {
  World& here = World::Here();
  const Block* found = here.Holding(block);
  const bool known = found != nullptr && found->base == block;
  const std::int64_t kind = known ? static_cast<std::int64_t>(found->kind) : -1;
  here.Note(Call::Free, {known ? std::int64_t{found->ordinal} : -1, kind});
  if (known) here.Release(block);
  return here.script.freeAnswer;
}

void* CVT_CALL SioCreateOp(std::uint32_t code, std::uint32_t size) {
  World& here = World::Here();
  const bool fails = ++here.allocs == here.script.failAllocAt || size > cvt::test::kLargestBlock;
  std::uint8_t* base = fails ? nullptr : here.Take(size + kBandPrefixBytes, BlockKind::Band);
  std::uint8_t* body = nullptr;
  if (base != nullptr) {
    body = base + kBandPrefixBytes;
    cvt::test::SetPrefix(body, {static_cast<std::uint16_t>(code), static_cast<std::uint16_t>(size)});
  }
  here.Note(Call::CreateOp, {code, size, here.Identify(body)});
  return body;
}

std::uint32_t CVT_CALL SioPutOp(tagOpList* list, void** operation) {
  World& here = World::Here();
  here.Note(Call::PutOp, {here.Identify(list), here.Identify(*operation)});
  return 0;
}

std::int16_t CVT_CALL SioGetOpError(tagOpList* list) {
  World& here = World::Here();
  const std::size_t read = here.listReads++;
  const std::int16_t answer =
      read < here.script.listErrors.size() ? here.script.listErrors[read] : std::int16_t{0};
  here.Note(Call::OpError, {here.Identify(list), answer});
  return answer;
}

tagIGFD* CVT_CALL CvtDupIGFD(tagIGFD* descriptor) {
  World& here = World::Here();
  const bool fails = ++here.dups == here.script.failDupAt;
  auto* copy = fails ? nullptr : here.Take(sizeof(tagIGFD), BlockKind::Copy);
  if (copy != nullptr) std::memcpy(copy, descriptor, sizeof(tagIGFD));
  here.Note(Call::Dup, {here.Identify(descriptor), here.Identify(copy)});
  return reinterpret_cast<tagIGFD*>(copy);
}

void CVT_CALL CvtDisposeIGFD(tagIGFD* copy) {
  World& here = World::Here();
  here.Note(Call::Dispose, {here.Identify(copy)});
  here.Release(copy);
}
