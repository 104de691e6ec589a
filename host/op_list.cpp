// Operation lists, kept in a growing array on the heap.

#include "host/op_list.h"

#include <cstring>

#include "cvt/host.h"
#include "cvt/status.h"

namespace cvt::host {
namespace {

constexpr std::uint32_t kFirstRoom = 16;
constexpr std::uint32_t kMostRoom = 1U << 26;

std::uint8_t* PrefixOf(void* operation) { return static_cast<std::uint8_t*>(operation) - kBandPrefixBytes; }

bool MakeRoom(tagOpList* list) {
  if (list->count < list->room) return true;
  if (list->room >= kMostRoom) return false;
  const std::uint32_t room = list->room == 0 ? kFirstRoom : 2 * list->room;
  auto* grown = static_cast<void**>(SioAllocSMem(room * std::uint32_t{sizeof(void*)}));
  if (grown == nullptr) return false;
  if (list->count != 0) std::memcpy(grown, list->operations, list->count * sizeof(void*));
  SioFreeSMem(list->operations);
  list->operations = grown;
  list->room = room;
  return true;
}

}  // namespace

void EmptyOpList(tagOpList* list) {
  for (std::uint32_t i = 0; i < list->count; ++i) SioFreeSMem(PrefixOf(list->operations[i]));
  SioFreeSMem(list->operations);
  *list = tagOpList{};
}

std::int16_t PutBandCopy(tagOpList* list, const tagRasterPacked* band) {
  if (list == nullptr) return kSioListClosed;
  std::uint16_t prefix[2];  // code, size
  std::memcpy(prefix, reinterpret_cast<const std::uint8_t*>(band) - sizeof prefix, sizeof prefix);
  void* copy = SioCreateOp(prefix[0], prefix[1]);
  if (copy == nullptr) return kSioListNoMemory;
  std::memcpy(copy, band, prefix[1]);
  if (SioPutOp(list, &copy) == 0) return kCvtOk;
  SioFreeSMem(PrefixOf(copy));
  return kSioListNoMemory;
}

}  // namespace cvt::host

using namespace cvt::host;

// A list that took an operation owns it and says so by clearing the caller's variable: what is released
// twice otherwise, a foreign operation that the scalers hand on, is then seen to be gone.
std::uint32_t CVT_CALL SioPutOp(tagOpList* list, void** operation) {
  if (!MakeRoom(list)) {
    if (list->error == 0) list->error = kSioListNoMemory;
    return 1;
  }
  list->operations[list->count++] = *operation;
  *operation = nullptr;
  return 0;
}

std::int16_t CVT_CALL SioGetOpError(tagOpList* list) { return list == nullptr ? kCvtOk : list->error; }
