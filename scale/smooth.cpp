// Smooth scaling: palette indices and planes cannot be averaged, so every band is first rewritten as 8-bit
// gray levels or as 32-bit colours, sub-band by sub-band, and these go to the kernels.

#include <array>
#include <cstring>

#include "cvt/cvtr2r.h"
#include "frame/color.h"
#include "frame/split.h"
#include "scale/bands.h"

namespace cvt {
namespace {

inline constexpr std::uint8_t kGrayDepth = 8;
inline constexpr std::uint8_t kColorDepth = 24;
inline constexpr std::uint16_t kPreparedKind = kPackedKind | 1;
inline constexpr std::uint32_t kGrays = 256;

// How a color is put into a prepared pixel.
struct AsGray {
  static constexpr std::uint32_t kDepth = 8;
  static std::uint32_t Pack(IRGB color, const Channels&) { return GrayOf(color); }
};
struct AsColor {
  static constexpr std::uint32_t kDepth = 32;
  static std::uint32_t Pack(IRGB color, const Channels& to) {
    const std::uint32_t redGreen =
        std::uint32_t{color.red} >> to.shift << to.width | std::uint32_t{color.green} >> to.shift;
    return redGreen << to.width | std::uint32_t{color.blue} >> to.shift;
  }
};

// How the source's values become prepared pixels. Palettes are mapped once; values outside the table, which
// only deeper palettes have, one by one.
struct PrepareRule {
  Source source;
  Channels to;
  std::uint32_t known;
  std::array<std::uint32_t, 256> pixels;
};

template <class Form>
PrepareRule RuleOf(const tagIGFD* source, const tagIGFD* prepared, const tagCRLA* context) {
  PrepareRule rule{SourceOf(source, context), ChannelsOf(prepared->bitsPerPixel), 0, {}};
  if (rule.source.indexed) rule.known = source->bitsPerPixel < 8 ? 1U << source->bitsPerPixel : 256;
  for (std::uint32_t i = 0; i < rule.known; ++i) rule.pixels[i] = Form::Pack(source->palette[i], rule.to);
  return rule;
}

template <class Form>
void PrepareRuns(const PrepareRule& rule, tagCRLA* context) {
  std::uint32_t* values = context->values;
  const std::uint32_t runs = context->runCount;
  if (rule.source.indexed) {
    for (std::uint32_t i = 0; i < runs; ++i)
      values[i] =
          values[i] < rule.known ? rule.pixels[values[i]] : Form::Pack(rule.source.palette[values[i]], rule.to);
    return;
  }
  const Channels from = rule.source.channels;
  const Channels to = rule.to;
  for (std::uint32_t i = 0; i < runs; ++i)
    values[i] = Form::Pack(SplitChannels<ChannelOrder::BlueLowest>(values[i], from), to);
}

// Makes prepared sub-band number *index, no larger than the next stage takes, and counts the index on; 0
// after the last. The depth of the input stays as it is.
template <class Form, class From>
tagRasterPacked* PrepareAs(void* slot, tagIGFD* source, tagIGFD* prepared, tagCRLA* context,
                           std::uint16_t* index) {
  auto* band = BandAt<typename From::Band>(slot);
  const std::uint32_t lines = band->lineCount;
  const std::uint32_t limit = (*context->next->stage)->bandLimit;
  const SubBands parts = SplitByBytes(lines, RowBytes(band->width, Form::kDepth), limit);
  if (parts.count == 0) return nullptr;
  auto* input = OpenCursor(band);
  if (input == nullptr) return nullptr;

  const std::uint32_t part = *index;
  const BandShape shape{band->left, band->top + FirstLineOf(parts, part), band->width, LinesOf(parts, part, lines),
                        Form::kDepth};
  const Output<Packed> output = MakeOutput<Packed>(shape);
  if (output.cursor == nullptr) return nullptr;
  const PrepareRule rule = RuleOf<Form>(source, prepared, context);
  CopyLines(input, output.cursor, context, band->width, [&] { PrepareRuns<Form>(rule, context); });
  CloseCursor(output.cursor);
  CloseCursor(input);
  *index = part + 1 == parts.count ? std::uint16_t{0} : Low16(part + 1);
  return output.band;
}

template <class From>
tagRasterPacked* PrepareSmooth(void* slot, tagIGFD* source, tagIGFD* prepared, tagCRLA* context,
                               std::uint16_t* index) {
  if (prepared->bitsPerPixel == kGrayDepth) return PrepareAs<AsGray, From>(slot, source, prepared, context, index);
  return PrepareAs<AsColor, From>(slot, source, prepared, context, index);
}

// The host is asked only when the settings do not answer.
bool WorksOnGray(tagIGFD* source, const tagIGFD* destination, const tagCRLA* context) {
  return context->grayPalette == kGrayRamp || source->bitsPerPixel == 1 || destination->bitsPerPixel == 1 ||
         CvtIsGray(source, 0) != 0;
}

// Makes the descriptor of what the kernels get. Its gray ramp, where it has one, lives as long as one call.
CvtStatus DescribePrepared(tagIGFD* prepared, bool gray) {
  prepared->options &= Low16(~std::uint32_t{kSmoothOption});
  prepared->rasterKind = kPreparedKind;
  prepared->sampleDepth = 8;
  prepared->keepColor = 0;
  std::memset(prepared->keepColorWords, 0, sizeof prepared->keepColorWords);
  prepared->colorFlags = gray ? kIndexedColor : std::uint8_t{0};
  prepared->bitsPerPixel = gray ? kGrayDepth : kColorDepth;
  prepared->palette = nullptr;
  if (!gray) return kCvtOk;

  auto* ramp = static_cast<IRGB*>(SioAllocSMem(kGrays * sizeof(IRGB)));
  if (ramp == nullptr) return kCvtNoDescriptor;
  for (std::uint32_t i = 0; i < kGrays; ++i) ramp[i] = {Low8(i), Low8(i), Low8(i)};
  prepared->palette = ramp;
  return kCvtOk;
}

void FreeRamp(const tagIGFD* prepared) {
  if (prepared->bitsPerPixel == kGrayDepth) SioFreeSMem(prepared->palette);
}

CvtStatus RunKernel(tagRasterPacked* band, tagIGFD* prepared, tagIGFD* destination, tagCRLA* context) {
  if (band->lineCount == 0) return kCvtOk;
  if (prepared->bitsPerPixel == kGrayDepth) return CvtScaleSmoothGray(band, prepared, destination, context);
  return CvtScaleSmoothRGB(band, prepared, destination, context);
}

// What a failing kernel left is its own; here everything is given back, the gray ramp first.
template <class From>
CvtStatus SmoothParts(void* slot, tagIGFD* source, tagIGFD* prepared, tagIGFD* destination, tagCRLA* context) {
  CvtStatus status = kCvtOk;
  std::uint16_t index = 0;
  do {
    tagRasterPacked* band = PrepareSmooth<From>(slot, source, prepared, context, &index);
    if (band == nullptr) {
      FreeRamp(prepared);
      return kCvtNoMemory;
    }
    status = RunKernel(band, prepared, destination, context);
    if (status != kCvtOk) FreeRamp(prepared);
    SioFreeSMem(BlockOf(band));
  } while (status == kCvtOk && index != 0);
  if (status == kCvtOk) FreeRamp(prepared);
  return status;
}

}  // namespace
}  // namespace cvt

using cvt::Packed, cvt::Planes;

CvtStatus CVT_CALL CvtScaleSmooth(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                  tagCRLA* context) {
  tagIGFD* prepared = CvtDupIGFD(source);
  if (prepared == nullptr) return kCvtNoDescriptor;
  const bool gray = cvt::WorksOnGray(source, destination, context);
  CvtStatus status = cvt::DescribePrepared(prepared, gray);
  if (status != kCvtOk) return status;  // the copy stays allocated

  const bool planes = cvt::OperationOf(cvt::BandAt<tagRasterPacked>(band)) == kPlaneBand;
  status = planes ? cvt::SmoothParts<Planes>(band, source, prepared, destination, context)
                  : cvt::SmoothParts<Packed>(band, source, prepared, destination, context);
  CvtDisposeIGFD(prepared);
  return status;
}
tagRasterPacked* CVT_CALL CvtPrepareSmoothBit(tagRasterPlane** band, tagIGFD* source, tagIGFD* prepared,
                                              tagCRLA* context, std::uint16_t* index) {
  return cvt::PrepareSmooth<Planes>(band, source, prepared, context, index);
}
tagRasterPacked* CVT_CALL CvtPrepareSmoothByte(tagRasterPacked** band, tagIGFD* source, tagIGFD* prepared,
                                               tagCRLA* context, std::uint16_t* index) {
  return cvt::PrepareSmooth<Packed>(band, source, prepared, context, index);
}
