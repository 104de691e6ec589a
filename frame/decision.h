// Which conversion a band needs next: the order of decisions that the whole pipeline rests on.
//
// Pure functions of the two descriptors and the context's settings; dispatch.cpp acts on their answer.
#pragma once

#include <cstdint>

#include "cvt/records.h"

namespace cvt {

enum class Step : std::uint8_t {
  ClipPlane,
  ClipPacked,
  ScaleSmooth,
  ScaleDownWidth,
  ScaleDownHeight,
  ScaleUpWidth,
  ScaleUpHeight,
  BitRGBPacked,
  ByteRGBPacked,
  BitRGBPlane,
  ByteRGBPlane,
  Relabel,
  NearestBitByte,
  NearestByteBit,
  NearestBitBit,
  NearestByteByte,
  MonoDiffusionBitByte,
  MonoDiffusionByteBit,
  MonoDiffusionBitBit,
  MonoDiffusionByteByte,
  MonoDitherBitByte,
  MonoDitherByteBit,
  MonoDitherBitBit,
  MonoDitherByteByte,
  ColorDiffusionBitByte,
  ColorDiffusionByteBit,
  ColorDiffusionBitBit,
  ColorDiffusionByteByte,
  ColorDitherBitByte,
  ColorDitherByteBit,
  ColorDitherBitBit,
  ColorDitherByteByte,
  PassThrough,
};

constexpr bool IsPlanes(const tagIGFD& image) { return (image.rasterKind & kPlaneKind) != 0; }
constexpr bool IsPacked(const tagIGFD& image) { return (image.rasterKind & kPackedKind) != 0; }

// One past the image's last column or line. Smooth scaling compares these ends, not the sizes.
constexpr std::uint32_t EndOf(std::int16_t origin, std::int32_t size) {
  return static_cast<std::uint32_t>(std::int32_t{origin}) + static_cast<std::uint32_t>(size);
}

constexpr bool EndsDiffer(const tagIGFD& source, const tagIGFD& wanted) {
  return EndOf(source.originX, source.imageWidth) != EndOf(wanted.originX, wanted.imageWidth) ||
         EndOf(source.originY, source.imageHeight) != EndOf(wanted.originY, wanted.imageHeight);
}

// Reductions go first, and take images of equal size at another origin as well.
constexpr Step DecideScaling(const tagIGFD& source, const tagIGFD& wanted) {
  if (source.imageWidth > wanted.imageWidth ||
      (source.imageWidth == wanted.imageWidth && source.originX != wanted.originX))
    return Step::ScaleDownWidth;
  if (source.imageHeight > wanted.imageHeight ||
      (source.imageHeight == wanted.imageHeight && source.originY != wanted.originY))
    return Step::ScaleDownHeight;
  if (source.imageWidth < wanted.imageWidth) return Step::ScaleUpWidth;
  if (source.imageHeight < wanted.imageHeight) return Step::ScaleUpHeight;
  return Step::PassThrough;
}

constexpr Step DecideDirectColor(const tagIGFD& source, const tagIGFD& wanted) {
  if ((wanted.colorFlags & kIndexedColor) != 0) return Step::PassThrough;
  if (IsPacked(wanted) && IsPlanes(source)) return Step::BitRGBPacked;
  if (IsPacked(wanted) && IsPacked(source)) return Step::ByteRGBPacked;
  if (IsPlanes(wanted) && IsPlanes(source)) return Step::BitRGBPlane;
  if (IsPlanes(wanted) && IsPacked(source)) return Step::ByteRGBPlane;
  return Step::PassThrough;
}

// The four siblings of a family follow one another in Step in this order.
enum class Sibling : std::uint8_t { BitByte, ByteBit, BitBit, ByteByte, None };

// A source that keeps its layout needs work only when `keepsLayoutToo` says so. Sources and destinations
// may claim both layouts; the order settles which is meant.
constexpr Sibling DecideLayout(const tagIGFD& source, const tagIGFD& wanted, bool keepsLayoutToo) {
  if (IsPlanes(source) && IsPacked(wanted)) return Sibling::BitByte;
  if (IsPacked(source) && IsPlanes(wanted)) return Sibling::ByteBit;
  if (IsPlanes(source) && IsPlanes(wanted) && keepsLayoutToo) return Sibling::BitBit;
  if (IsPacked(source) && IsPacked(wanted) && keepsLayoutToo) return Sibling::ByteByte;
  return Sibling::None;
}

constexpr Step Member(Step family, Sibling sibling) {
  if (sibling == Sibling::None) return Step::PassThrough;
  return static_cast<Step>(static_cast<std::uint8_t>(family) + static_cast<std::uint8_t>(sibling));
}

static_assert(Member(Step::NearestBitByte, Sibling::ByteByte) == Step::NearestByteByte);
static_assert(Member(Step::MonoDiffusionBitByte, Sibling::ByteBit) == Step::MonoDiffusionByteBit);
static_assert(Member(Step::MonoDitherBitByte, Sibling::BitBit) == Step::MonoDitherBitBit);
static_assert(Member(Step::ColorDiffusionBitByte, Sibling::ByteByte) == Step::ColorDiffusionByteByte);
static_assert(Member(Step::ColorDitherBitByte, Sibling::ByteByte) == Step::ColorDitherByteByte);

constexpr Step ByMethod(std::uint8_t method, Step nearest, Step diffusion, Step dither) {
  return method == kNearest ? nearest : method == kDiffusion ? diffusion : dither;
}

// A monochrome band whose colours agree is still converted when it is to be inverted; a colour band whose
// colours agree never is.
constexpr Step DecideDepth(const tagIGFD& source, const tagIGFD& wanted, const tagCRLA& context) {
  const std::uint8_t method = context.halftoneMethod;
  if (wanted.bitsPerPixel != 1) {
    const Step family =
        ByMethod(method, Step::NearestBitByte, Step::ColorDiffusionBitByte, Step::ColorDitherBitByte);
    return Member(family, DecideLayout(source, wanted, context.sameColorMap == 0));
  }
  if (source.bitsPerPixel == 1 && source.rasterKind != 0 && (IsPlanes(wanted) || IsPacked(wanted)))
    return Step::Relabel;
  const Step family = ByMethod(method, Step::NearestBitByte, Step::MonoDiffusionBitByte, Step::MonoDitherBitByte);
  return Member(family, DecideLayout(source, wanted, context.sameColorMap == 0 || context.invertMono != 0));
}

// The first conversion that is due, for a band that has lines.
constexpr Step Decide(const tagIGFD& source, const tagIGFD& wanted, const tagCRLA& context) {
  if ((source.options & kClipOption) != 0) {
    if (IsPlanes(source)) return Step::ClipPlane;
    if (IsPacked(source)) return Step::ClipPacked;
  }
  if ((source.options & kSmoothOption) != 0 && EndsDiffer(source, wanted)) return Step::ScaleSmooth;
  if (const Step step = DecideScaling(source, wanted); step != Step::PassThrough) return step;
  if (const Step step = DecideDirectColor(source, wanted); step != Step::PassThrough) return step;
  return DecideDepth(source, wanted, context);
}

}  // namespace cvt
