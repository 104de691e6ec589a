// The scalers, workers among them, as band routines.

#include <algorithm>
#include <type_traits>

#include "tests/library/scale_cases.h"
#include "tests/reference/scale.h"

namespace cvt::test {

namespace {

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

template <auto kKernel, auto... kFirst>
CvtStatus Kernel(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return kKernel(kFirst..., *band, source, destination, context);
}

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
  all.push_back({"CvtScaleSmoothGray", Kernel<CvtScaleSmoothGray>, Kernel<RefSmoothKernel, false>});
  all.push_back({"CvtScaleSmoothRGB", Kernel<CvtScaleSmoothRGB>, Kernel<RefSmoothKernel, true>});
  return all;
}();

Outcome RunScale(const ScaleCase& what, BandRoutine routine) {
  return RunCase(what, routine, ScriptedConvert, [&what](World& world) {
    FurnishForScaling(world, what.capacity, std::max<std::size_t>(what.capacity, what.linePixels));
  });
}

}  // namespace cvt::test
