#include "tests/library/scale_harness.h"

#include <cstring>
#include <type_traits>

#include "tests/scripted/prefix.h"

namespace cvt::test {

namespace {

// ---- Workers as band routines ----

template <auto kWorker, bool kPlanes, class... Args>
tagRasterPacked* Start(tagRasterPacked** band, Args... args) {
  if constexpr (std::is_invocable_v<decltype(kWorker), bool, tagRasterPacked**, Args...>) {
    return kWorker(kPlanes, band, args...);
  } else if constexpr (std::is_invocable_v<decltype(kWorker), tagRasterPlane**, Args...>) {
    auto* planes = reinterpret_cast<tagRasterPlane*>(*band);
    return reinterpret_cast<tagRasterPacked*>(kWorker(&planes, args...));
  } else {
    return kWorker(band, args...);
  }
}

enum class Takes : std::uint8_t { Index, KeepColor, Nothing, Descriptors };

template <auto kWorker, bool kPlanes, Takes kTakes, Along kAlong = Along::Width>
CvtStatus Work(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  const bool width = kAlong == Along::Width;
  const std::int32_t from = width ? source->imageWidth : source->imageHeight;
  const std::int32_t to = width ? destination->imageWidth : destination->imageHeight;
  std::int16_t next = source->clipX0;
  for (int calls = 0; calls < 40; ++calls) {
    auto index = static_cast<std::uint16_t>(next);
    tagRasterPacked* made = nullptr;
    if constexpr (kTakes == Takes::Index) made = Start<kWorker, kPlanes>(band, from, to, context, &next);
    if constexpr (kTakes == Takes::KeepColor)
      made = Start<kWorker, kPlanes>(band, from, to, context, std::int16_t{destination->keepColor});
    if constexpr (kTakes == Takes::Nothing) made = Start<kWorker, kPlanes>(band, from, to, context);
    if constexpr (kTakes == Takes::Descriptors) {
      made = Start<kWorker, kPlanes>(band, source, destination, context, &index);
      next = static_cast<std::int16_t>(index);
    }
    if (made == nullptr) return kCvtNoMemory;
    const CvtStatus status = context->convertProc(&made, source, destination, context);
    if (status != kCvtOk) return status;
    RefFreeBand(made);
    if (kTakes == Takes::KeepColor || kTakes == Takes::Nothing || next == 0) return kCvtOk;
  }
  return next;
}

template <auto kKernel>
CvtStatus Kernel(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return kKernel(*band, source, destination, context);
}

template <auto kTwin, auto kFirst>
CvtStatus With(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  if constexpr (std::is_same_v<decltype(kFirst), bool>)
    return kTwin(kFirst, *band, source, destination, context);
  else
    return kTwin(kFirst, band, source, destination, context);
}

// ---- The world ----

template <class Item>
Item* NewArray(World& world, std::size_t items, bool zeroed) {
  const auto bytes = static_cast<std::uint32_t>(items * sizeof(Item));
  std::uint8_t* block = world.Take(bytes, BlockKind::Heap);
  if (zeroed) std::memset(block, 0, bytes);
  return reinterpret_cast<Item*>(block);
}

std::vector<std::uint8_t> StateOf(const tagCRLA& c) {
  const std::uint32_t state[] = {c.runCount,     c.mergeLeft,  c.nextSourceLine,     c.upSourceLine,
                                 c.upOutputLine, c.mergeWidth, c.smoothOutputRemain, c.scaleAccumulator};
  std::vector<std::uint8_t> bytes(sizeof state);
  std::memcpy(bytes.data(), state, sizeof state);
  return bytes;
}

constexpr int kBuffers = 6;

}  // namespace

const std::vector<Scaler> kScaleDrivers = {
    {"CvtScaleUpWidth", CvtScaleUpWidth, With<RefScaleUp, Along::Width>},
    {"CvtScaleUpHeight", CvtScaleUpHeight, With<RefScaleUp, Along::Height>},
    {"CvtScaleDownWidth", CvtScaleDownWidth, With<RefScaleDown, Along::Width>},
    {"CvtScaleDownHeight", CvtScaleDownHeight, With<RefScaleDown, Along::Height>},
    {"CvtScaleSmooth", CvtScaleSmooth, RefScaleSmooth}};

template <auto kBit, auto kByte, auto kTwin, Takes kTakes, Along kAlong = Along::Width>
static void AddPair(std::vector<Scaler>& all, const std::string& stem) {
  all.push_back({stem + "Bit", Work<kBit, true, kTakes, kAlong>, Work<kTwin, true, kTakes, kAlong>});
  all.push_back({stem + "Byte", Work<kByte, false, kTakes, kAlong>, Work<kTwin, false, kTakes, kAlong>});
}

const std::vector<Scaler> kScaleWorkers = [] {
  constexpr Along kWidth = Along::Width, kHeight = Along::Height;
  constexpr Takes kIndex = Takes::Index, kKeep = Takes::KeepColor, kNothing = Takes::Nothing;
  std::vector<Scaler> all;
  AddPair<CvtScaleUpWidthBit, CvtScaleUpWidthByte, RefUpWidth, kIndex, kWidth>(all, "CvtScaleUpWidth");
  AddPair<CvtScaleUpHeightBit, CvtScaleUpHeightByte, RefUpHeight, kIndex, kHeight>(all, "CvtScaleUpHeight");
  AddPair<CvtScaleDownWidthBit, CvtScaleDownWidthByte, RefDownWidth, kKeep, kWidth>(all, "CvtScaleDownWidth");
  AddPair<CvtScaleDownHeightBit, CvtScaleDownHeightByte, RefDownHeight, kNothing, kHeight>(all,
                                                                                           "CvtScaleDownHeight");
  AddPair<CvtDecimateWidthBit, CvtDecimateWidthByte, RefDecimateWidth, kNothing, kWidth>(all, "CvtDecimateWidth");
  AddPair<CvtDecimateHeightBit, CvtDecimateHeightByte, RefDecimateHeight, kNothing, kHeight>(all,
                                                                                             "CvtDecimateHeight");
  return all;
}();
const std::vector<Scaler> kSmoothWorkers = [] {
  std::vector<Scaler> all;
  AddPair<CvtPrepareSmoothBit, CvtPrepareSmoothByte, RefPrepareSmooth, Takes::Descriptors>(all,
                                                                                           "CvtPrepareSmooth");
  all.push_back({"CvtScaleSmoothGray", Kernel<CvtScaleSmoothGray>, With<RefSmoothKernel, false>});
  all.push_back({"CvtScaleSmoothRGB", Kernel<CvtScaleSmoothRGB>, With<RefSmoothKernel, true>});
  return all;
}();

// The next link. Keeps the entries of a palette that was allocated, which stands under its ordinal in the log, and
// scribbles over the whole line buffer that the context really has.
std::int16_t CVT_CALL NextLink(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  World& here = World::Here();
  IRGB* const palette = source->palette;
  const std::int64_t ordinal = here.Identify(palette);
  if (ordinal > 0) source->palette = reinterpret_cast<IRGB*>(ordinal);
  const std::int16_t answer = ScriptedConvert(band, source, destination, context);
  source->palette = palette;
  if (ordinal > 0) here.handedOn.push_back(here.BytesOf(palette));
  for (std::size_t i = 0; here.script.scribbles && i < here.values.size(); ++i) {
    context->runLengths[i] = here.runLengths[i];
    context->values[i] = here.values[i];
  }
  return answer;
}

Outcome RunScale(const ScaleCase& what, BandRoutine routine, CvtConvertProc convert) {
  World world(what.script, what.capacity, what.errorRow);
  SetUp(world, what, convert);
  tagCRLA& context = world.context;
  if (!what.palette.empty()) world.source.palette = const_cast<IRGB*>(what.palette.data());
  world.stage.bandLimit = what.bandLimit;
  const std::size_t entries = what.capacity, pixels = std::max(entries, what.linePixels);
  auto* flags = NewArray<std::uint16_t>(world, entries, true);
  auto* merged = NewArray<std::uint32_t>(world, pixels, true);
  context.runLengths = NewArray<std::uint16_t>(world, entries, false);
  context.values = NewArray<std::uint32_t>(world, entries, false);
  context.ownedBuffer1 = flags;
  context.ownedBuffer2 = merged;
  context.smoothCurrentLine = NewArray<std::uint32_t>(world, pixels, false);
  context.smoothSums = NewArray<std::uint32_t>(world, 3 * pixels, false);
  context.scaleDownMethod = what.scaleDownMethod;
  context.scaleAccumulator = what.accumulator;
  const std::vector<const void*> buffers = {
      flags, merged, context.runLengths, context.values, context.smoothCurrentLine, context.smoothSums};

  Outcome outcome;
  for (const BandPlan& plan : what.bands) {
    tagRasterPacked* const band = world.MakeBand(plan);
    if (what.operationCode != 0) SetPrefix(band, {what.operationCode, PrefixOf(band).size});
    tagRasterPacked* slot = band;
    outcome.statuses.push_back(routine(&slot, &world.source, &world.destination, &context));
    outcome.inputs.push_back(world.BytesOf(band));
    if (outcome.statuses.back() != kCvtOk) break;
  }
  for (const void* buffer : buffers) outcome.inputs.push_back(world.BytesOf(buffer));
  outcome.log = std::move(world.log);
  outcome.handedOn = std::move(world.handedOn);
  outcome.errorRow = world.errors;
  outcome.context = StateOf(context);
  outcome.leftAllocated = world.LeftAllocated();
  outcome.leftAllocated.erase(outcome.leftAllocated.begin(), outcome.leftAllocated.begin() + kBuffers);
  return outcome;
}

}  // namespace cvt::test
