// Opening and closing conversions.

#include "host/conversion.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "host/conversion_tables.h"
#include "host/op_list.h"
#include "host/state.h"

namespace cvt::host {
namespace {

bool HasUsableColors(const tagIGFD* image) {
  if (image == nullptr) return false;
  return !IsIndexed(image) || (image->palette != nullptr && image->bitsPerPixel >= 1 && image->bitsPerPixel <= 8);
}

// The fixed block is read as 64 thresholds, whatever the dimensions say.
bool HasUsableMatrix(const ConversionSetup& setup) {
  if (setup.ditherMatrix == nullptr) return true;
  const int places = setup.ditherWidth * setup.ditherHeight;
  return places >= (setup.halftoneMethod == kFixedBlock ? 64 : 1);
}

// Buffers of scaled lines are as wide as lineCapacity.
bool HasRoomToScale(const ConversionSetup& setup) {
  return !MayScale(setup) || std::max(std::int32_t{setup.source->imageWidth},
                                      std::int32_t{setup.destination->imageWidth}) <= setup.lineCapacity;
}

bool CanBeMet(const ConversionSetup& setup) {
  return HasUsableColors(setup.source) && HasUsableColors(setup.destination) && setup.lineCapacity != 0 &&
         setup.next != nullptr && setup.bandLimit != 0 && setup.gamma > 0 && std::isfinite(setup.gamma) &&
         HasUsableMatrix(setup) && HasRoomToScale(setup);
}

// Whether values keep their meaning. For one bit a pixel that is a question of which value is the lighter
// one: a one-bit band is only ever kept or inverted, by this answer, whatever its colours are.
bool SameColors(const tagIGFD* source, const tagIGFD* destination) {
  if (IsIndexed(source) != IsIndexed(destination)) return false;
  if (source->bitsPerPixel != destination->bitsPerPixel) return false;
  if (!IsIndexed(source)) return true;
  const Palette from = PaletteOf(source), to = PaletteOf(destination);
  if (from.count == 2) return WhiteOf(from) == WhiteOf(to);
  return std::equal(from.colors, from.colors + from.count, to.colors);
}

// Makes a context with every field set: the library fills the run arrays only, and what it could not get
// must be null before it may release the rest.
tagCRLA* CreateContext(std::uint16_t capacity) {
  tagCRLA* context = nullptr;
  const CvtStatus status = CvtCreateCRLA(&context, capacity);
  if (context == nullptr) return nullptr;
  std::uint16_t* lengths = context->runLengths;
  std::uint32_t* values = lengths == nullptr ? nullptr : context->values;  // not set when the first array failed
  *context = tagCRLA{};
  context->runLengths = lengths;
  context->values = values;
  context->runCount = capacity;
  if (status == kCvtOk) return context;
  CvtDestroyCRLA(context);
  return nullptr;
}

bool AddState(tagCRLA* context, const ConversionSetup& setup) {
  void* memory = SioAllocSMem(sizeof(HostState));
  if (memory == nullptr) return false;
  auto* state = new (memory) HostState{};
  state->stage.bandLimit = setup.bandLimit;
  state->stageAddress = &state->stage;
  state->run = setup.next;
  state->user = setup.user;
  state->next = {&state->stageAddress, &state->band, state};
  context->core = state;
  context->next = &state->next;
  return true;
}

void SetChoices(tagCRLA* context, const ConversionSetup& setup) {
  context->convertProc = Cvtr2r;
  context->halftoneMethod = setup.halftoneMethod;
  context->scaleDownMethod = setup.scaleDownMethod;
  context->invertMono = setup.invertMono ? 1 : 0;
  context->sameColorMap = SameColors(setup.source, setup.destination) ? 1 : 0;
  context->gammaActive = setup.gamma != 1.0 ? 1 : 0;
  BuildGamma(setup.gamma, StateOf(context)->toneCurve);
}

std::int16_t PutOnDestinationList(void* user, tagRasterPacked* band) {
  return PutBandCopy(static_cast<tagOpList*>(user), band);
}

}  // namespace

tagCRLA* OpenConversion(const ConversionSetup& setup) {
  if (!CanBeMet(setup)) return nullptr;
  tagCRLA* context = CreateContext(setup.lineCapacity);
  if (context == nullptr) return nullptr;
  if (!AddState(context, setup) || !AddErrorRow(context, setup) || !AddSearchTables(context, setup) ||
      !AddDitherTables(context, setup) || !AddScalingLines(context, setup)) {
    CloseConversion(context);
    return nullptr;
  }
  SetChoices(context, setup);
  return context;
}

void* UserOf(const tagCRLA* context) { return StateOf(context)->user; }

void CloseConversion(tagCRLA* context) {
  if (context == nullptr) return;
  if (HostState* state = StateOf(context)) {
    for (void* table : {static_cast<void*>(state->searchTable), static_cast<void*>(state->ditherMatrix),
                        static_cast<void*>(state->ditherSteps), static_cast<void*>(state->cubeTable),
                        static_cast<void*>(state->smoothLine), static_cast<void*>(state->smoothSums)})
      SioFreeSMem(table);
    SioFreeSMem(state);
  }
  CvtDestroyCRLA(context);
}

}  // namespace cvt::host

using namespace cvt::host;

// The plain way in: nearest colours, and finished bands go to the operation list of the destination.
tagCRLA* CVT_CALL CvtOpenr2r(tagIGFD* source, tagIGFD* destination) {
  const std::int32_t widest = std::max(std::int32_t{source->imageWidth}, std::int32_t{destination->imageWidth});
  if (widest < 1 || widest > 65535) return nullptr;
  ConversionSetup setup;
  setup.source = source;
  setup.destination = destination;
  setup.lineCapacity = static_cast<std::uint16_t>(widest);
  setup.next = PutOnDestinationList;
  setup.user = destination->opList;
  return OpenConversion(setup);
}

void CVT_CALL CvtCloser2r(tagCRLA* context) { CloseConversion(context); }
