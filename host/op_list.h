// Operation lists: what is handed from stage to stage besides the bands of one conversion.
#pragma once

#include <cstdint>

#include "cvt/records.h"

/// A stage's list, empty when made. It owns the operations that are put on it.
struct tagOpList {
  void** operations = nullptr;
  std::uint32_t count = 0;
  std::uint32_t room = 0;
  std::int16_t error = 0;  // first failure to append, kSioListNoMemory; stays until the list is emptied
};

namespace cvt::host {

/// Releases every operation on a list and the list's memory; the list is then as new.
void EmptyOpList(tagOpList* list);

/// Puts a copy of a band of either kind on a list.
/// list  in/out  null: there is nowhere to put it
/// Returns 0, or the reason why there is no copy on the list: kSioListClosed, kSioListNoMemory.
std::int16_t PutBandCopy(tagOpList* list, const tagRasterPacked* band);

}  // namespace cvt::host
