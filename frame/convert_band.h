// The band frame that all depth, colour and halftoning routines share.
//
// Copies the descriptor, opens the input, cuts the output into sub-bands, has the rule convert each of
// them line by line, hands it on and releases it. Owns loop, allocation and clean-up order; knows nothing
// of colour or bit order.
//
// A rule is a struct of static members:
//   Values                                        what it works out once a call
//   Prepare(source, destination, context)         makes them, after the input cursor is open
//   ConvertLine(values, input, output, context, y)  converts the line just read and writes it
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/access.h"
#include "frame/families.h"
#include "frame/layout.h"
#include "frame/new_band.h"
#include "frame/split.h"

namespace cvt {

// Everything that a call has taken and not given back. The slot of the sub-band is what convertProc gets,
// and what stands in it afterwards is what is freed.
template <class From, class To>
struct Held {
  tagIGFD* copy;
  typename From::Cursor* input;
  tagRasterPacked* band;  // of the kind To
  typename To::Cursor* output;
};

template <class From, class To>
void ReleaseAll(const Held<From, To>& held) {
  if (held.output != nullptr) CloseCursor(held.output);
  if (held.band != nullptr) SioFreeSMem(BlockOf(held.band));
  if (held.input != nullptr) CloseCursor(held.input);
  CvtDisposeIGFD(held.copy);
}

template <OnFailure kPolicy, class From, class To>
CvtStatus GiveUp(const Held<From, To>& held, CvtStatus status) {
  if constexpr (kPolicy == OnFailure::ReleaseAll) ReleaseAll(held);
  return status;
}

// The depth of the output and the depth of the source that it is measured against. Plane output has as
// many planes as the destination wants; packed output has one of the depths that pixels are stored in.
struct Depths {
  std::uint32_t output;
  std::uint32_t source;
};

template <Target kTarget, class From, class To>
constexpr Depths DepthsOf(std::uint8_t source, std::uint8_t destination) {
  if constexpr (std::is_same_v<To, Planes>)
    return {destination, source};
  else if constexpr (kTarget == Target::DirectColor)  // 16 or 32, worked out in a byte
    return {Unsigned32(SignExtend8((Low8(destination + 15U) >> 3 & 0xFEU) << 3)), source};
  else if constexpr (std::is_same_v<From, Planes>)  // a destination of 128 bits and more reads as negative
    return {PaletteDepth(SignExtend8(destination)), source};
  else
    return {PaletteDepth(destination), PaletteDepth(source)};
}

static_assert(DepthsOf<Target::DirectColor, Packed, Packed>(8, 24).output == 32);
static_assert(DepthsOf<Target::DirectColor, Packed, Packed>(8, 15).output == 16);
static_assert(DepthsOf<Target::Palette, Planes, Packed>(8, 200).output == 1);

// Deep packed sources become packed direct colour in fewer pieces than their depths would give.
template <class From, class To>
constexpr bool HasDeepSplit(std::uint8_t source, std::uint8_t destination) {
  return std::is_same_v<From, Packed> && std::is_same_v<To, Packed> && source > 8 && destination >= 24;
}
constexpr SubBands SplitDeep(std::uint32_t bandLines, std::uint8_t source) {
  return source >= 24 ? SubBands{1, bandLines} : SubBands{2, (bandLines + 1) / 2};
}

template <Target kTarget, class From, class To>
constexpr SubBands SplitBand(std::uint32_t bandLines, std::uint8_t source, std::uint8_t destination) {
  const Depths depths = DepthsOf<kTarget, From, To>(source, destination);
  if constexpr (kTarget == Target::Palette) return SplitByDepth(bandLines, depths.output, depths.source);
  if (HasDeepSplit<From, To>(source, destination)) return SplitDeep(bandLines, source);
  return SplitEvenly(bandLines, depths.output, depths.source);
}

// Bytes of pixels that a sub-band is allocated with. The truncations are what hosts see; bands that they
// would cut never reach a routine from a careful host.
template <Family kFamily, class From, class To>
constexpr std::uint32_t PixelBytes(std::uint32_t width, std::uint32_t depth, std::uint32_t lines) {
  if constexpr (std::is_same_v<To, Planes>) {
    const std::uint32_t plane = PlaneBytes(width, lines);
    return (kFamily.planeSize == PlaneSize::Signed16 ? Unsigned32(SignExtend16(plane)) : plane) * depth;
  }
  if constexpr (kFamily.target == Target::DirectColor) return (RowBytes(width, depth) & 0xFFFE) * lines;
  const std::uint32_t bytes = RowBytes(width, depth) * lines;
  return std::is_same_v<From, Packed> ? Low16(bytes) : bytes;
}

template <Family kFamily, class Rule, class From, class To>
CvtStatus ConvertLines(const typename Rule::Values& values, typename From::Cursor* input,
                       typename To::Cursor* output, tagIGFD* source, tagCRLA* context) {
  const std::uint32_t end = output->bottom;
  for (std::uint32_t y = output->top; y < end; ++y) {
    ReadLine(input, context, Low16(y));
    if constexpr (kFamily.progress == Progress::AskedPerLine)
      if (source->progressProc(source->progressData) != 0) return kCvtStopped;
    Rule::ConvertLine(values, input, output, context, Low16(y));
  }
  return kCvtOk;
}

// Makes, converts, hands on and frees one sub-band. After a failure the family's policy has been applied
// to everything that stands in *held.
template <Family kFamily, class Rule, class From, class To>
CvtStatus ConvertSubBand(const typename Rule::Values& values, const BandShape& shape, Held<From, To>* held,
                         tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  auto* band = CreateBand<To>(shape, PixelBytes<kFamily, From, To>(shape.width, shape.depth, shape.lines));
  if (band == nullptr) return GiveUp<kFamily.noMemory>(*held, kCvtNoMemory);
  PutBand(&held->band, band);
  held->output = OpenCursor(band);
  if (held->output == nullptr) return GiveUp<kFamily.noMemory>(*held, kCvtNoMemory);

  CvtStatus status = ConvertLines<kFamily, Rule, From, To>(values, held->input, held->output, source, context);
  if (status != kCvtOk) return GiveUp<OnFailure::ReleaseAll>(*held, status);

  CloseCursor(held->output);
  held->output = nullptr;
  status = context->convertProc(&held->band, held->copy, destination, context);
  if (status != kCvtOk) return GiveUp<kFamily.nextLink>(*held, status);
  SioFreeSMem(BlockOf(held->band));
  held->band = nullptr;
  return kCvtOk;
}

template <Family kFamily, class Rule, class From, class To>
CvtStatus ConvertBand(typename From::Band** slot, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  Held<From, To> held{};
  held.copy = CvtDupIGFD(source);
  if (held.copy == nullptr) return kCvtNoDescriptor;
  held.copy->rasterKind = 0;  // what comes out needs no further conversion

  auto* band = BandAt<typename From::Band>(slot);
  held.input = OpenCursor(band);
  if (held.input == nullptr) return GiveUp<kFamily.noMemory>(held, kCvtNoMemory);

  const Depths depths = DepthsOf<kFamily.target, From, To>(source->bitsPerPixel, destination->bitsPerPixel);
  const SubBands parts =
      SplitBand<kFamily.target, From, To>(band->lineCount, source->bitsPerPixel, destination->bitsPerPixel);
  const auto values = Rule::Prepare(source, destination, context);
  for (std::uint32_t i = 0; i < parts.count; ++i) {
    const BandShape shape{band->left, band->top + FirstLineOf(parts, i), band->width,
                          LinesOf(parts, i, band->lineCount), depths.output};
    const CvtStatus status = ConvertSubBand<kFamily, Rule>(values, shape, &held, source, destination, context);
    if (status != kCvtOk) return status;
  }
  ReleaseAll(held);
  return kCvtOk;
}

}  // namespace cvt
