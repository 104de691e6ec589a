// Making and releasing a conversion's context.

#include "cvt/cvtr2r.h"

namespace {

void FreeIfAny(void* block) {
  if (block != nullptr) SioFreeSMem(block);
}

}  // namespace

CvtStatus CVT_CALL CvtCreateCRLA(tagCRLA** context, std::uint16_t capacity) {
  auto* made = static_cast<tagCRLA*>(SioAllocSMem(sizeof(tagCRLA)));
  *context = made;  // at once: the caller releases what a later failure leaves
  if (made == nullptr) return kCvtNoContext;

  made->runLengths = static_cast<std::uint16_t*>(SioAllocSMem(capacity * std::uint32_t{sizeof(std::uint16_t)}));
  if (made->runLengths == nullptr) return kCvtNoRunArrays;
  made->values = static_cast<std::uint32_t*>(SioAllocSMem(capacity * std::uint32_t{sizeof(std::uint32_t)}));
  if (made->values == nullptr) return kCvtNoRunArrays;
  made->runCount = capacity;
  return kCvtOk;
}

CvtStatus CVT_CALL CvtDestroyCRLA(tagCRLA* context) {
  FreeIfAny(context->runLengths);
  FreeIfAny(context->values);
  FreeIfAny(context->errorRow);
  FreeIfAny(context->ownedBuffer2);
  FreeIfAny(context->ownedBuffer1);
  return SioFreeSMem(context);
}
