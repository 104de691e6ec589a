// What every exported routine of the library must leave behind, whatever fails: one table, and no code.
#pragma once

#include <cstdint>

namespace cvt::test {

/// Two images and the settings of a conversion between them. As they stand: 4 x 2 pixels of 8 bits, nothing to do.
struct Images {
  std::uint8_t depth = 8, toDepth = 8;
  std::uint16_t width = 4, lines = 2;  // of the band, and of the source but for its height
  std::int32_t height = 2;             // of the source
  std::int32_t toWidth = 4, toHeight = 2;
  std::int16_t clipX0 = 0;  // the clip rectangle reaches from here to the end of the band
  std::uint16_t bandLimit = 65535;
  bool direct = false;  // the destination wants direct colour
  bool decimates = false, isGray = false;
  bool chain = false;  // convertProc is the dispatcher
  std::uint8_t method = 2;
};

/// Blocks have letters. c, C, k, K are descriptor copies; b, B, s, S, p, P bands; all others plain heap blocks.
/// Lists have a word for each failure in turn: the blocks that stay, in the order in which they were taken, '-'
/// for none. A word may name its status before a colon. Behind its last word a list expects success with nothing
/// left.
struct Rule {
  const char* takes;    // the blocks of a call that succeeds, in order
  const char* lacking;  // when the first, second … of them cannot be had: kCvtNoDescriptor, else kCvtNoMemory
  const char* refused;  // when the next link refuses the first, second … band: its status
  const char* stopped;  // when progressProc says stop at the first, second … question: kCvtStopped
  // Else a failure leaves the context's scaling state as it was at the call, or when the last band was handed on.
  bool finishedPartsMoveOn = false;
};

struct Row {
  const char* routines;  // members of one family
  Images images;
  Rule rule;
};

// Halftoning and mapping, in two pieces: input cursor i; the pieces b and B with their cursors o and O, which are
// closed when a piece is handed on.
inline constexpr Rule kLeavesAll = {"ciboBO", "- c ci cib ci ciB", "cib ciB", ""};
inline constexpr Rule kReleasesAll = {"ciboBO", "- - - - - -", "- -", ""};
inline constexpr Rule kReleasesAllAndAsks = {"ciboBO", "- - - - - -", "- -", "- -"};
inline constexpr Rule kLeavesWhatIsRefused = {"ciboBO", "- - - - - -", "cib ciB", ""};

// The caller's own band is handed on.
inline constexpr Rule kReleasesItsCopy = {"c", "-", "-", ""};
inline constexpr Rule kLeavesItsCopy = {"c", "-", "c", ""};
inline constexpr Rule kClips = {"cio", "- c ci", "-", ""};

// Scalers leave all; when a band is handed on, the worker that made it has closed its cursors.
inline constexpr Rule kEnlarges = {"ciboIBO", "- c ci cib c cI cIB", "cb cB", ""};
inline constexpr Rule kReduces = {"cibo", "- c ci cib", "cb", ""};
inline constexpr Rule kReducesToNothing = {"cib", "- c ci", "cb", ""};
inline constexpr Rule kEnlargingWorker = {"iboIBO", "- i ib - I IB", "b B", ""};
inline constexpr Rule kReducingWorker = {"ibo", "- i ib", "b", ""};

// Smooth scaling gives back its copy, the gray ramp r and the prepared band p; only when the ramp cannot be had
// the copy stays. The worker that prepares leaves all, and so does the kernel: copy k, input cursor j, one of its
// bands.
inline constexpr Rule kPrepares = {"ipoIPO", "- i ip - I IP", "p P", ""};
inline constexpr Rule kKernel = {"kjbqBQ", "- k kj kjb kj kjB", "kjb kjB", ""};
inline constexpr Rule kSmoothInGray = {"cripokjbq", "- -1006:c - i ip - k kj kjb", "kjb", ""};
inline constexpr Rule kSmoothInColor = {
    "cipokjbqBQIPOKJsuSU", "- - i ip - k kj kjb kj kjB - I IP - K KJ KJs KJ KJS", "kjb kjB KJs KJS", "", true};

// Clipping (c, i, o), reducing in width (C, j, b, q) and nearest colour (k, I, P, O), each asked for by the
// dispatcher when the one before it hands on; the dispatcher itself holds nothing.
inline constexpr Rule kChain = {"cioCjbqkIPO", "- c ci - C Cj Cjb Cb Cbk CbkI CbkIP", "CbkIP", "- - Cb CbkIP"};

inline constexpr Rule kCursor = {"i", "-", "", ""};
inline constexpr Rule kContext = {"ilv", "-100:- -105:i -105:il", "", ""};

inline constexpr Images kTwoPieces = {.depth = 4};
inline constexpr Images kTwoPiecesDirect = {.toDepth = 15, .direct = true};
inline constexpr Images kOneBit = {.depth = 1, .toDepth = 1};
inline constexpr Images kWider = {.toWidth = 33000};                // a line in a sub-band
inline constexpr Images kTaller = {.width = 32000, .toHeight = 3};  // two lines in a sub-band
inline constexpr Images kSmoothColors = {.depth = 32, .width = 2, .toWidth = 2, .toHeight = 4, .bandLimit = 16};
inline constexpr Images kSmoothGrays = {.width = 2, .toWidth = 2, .toHeight = 4, .bandLimit = 4};

inline constexpr Row kRows[] = {
    {"CvtBitByte CvtByteBit CvtBitBit CvtByteByte", kTwoPieces, kLeavesAll},
    {"CvtBitRGBPacked CvtByteRGBPacked CvtBitRGBPlane CvtByteRGBPlane", kTwoPiecesDirect, kLeavesAll},
    {"CvtByteRGBPacked CvtBitRGBPlane", {.direct = true}, kReleasesItsCopy},
    {"Cvt1Bit1Byte", kOneBit, kLeavesItsCopy},
    {"CvtClipPlane CvtClipPacked", {.clipX0 = 1}, kClips},
    {"CvtClipPlane CvtClipPacked", {}, kReleasesItsCopy},
    {"CvtMonochromeDiffusionBitByte CvtMonochromeDiffusionByteBit", kTwoPieces, kReleasesAllAndAsks},
    {"CvtMonochromeDiffusionBitBit CvtMonochromeDiffusionByteByte", kTwoPieces, kReleasesAllAndAsks},
    {"CvtMonochromeDitherBitByte", kTwoPieces, kLeavesWhatIsRefused},
    {"CvtMonochromeDitherByteBit CvtMonochromeDitherBitBit CvtMonochromeDitherByteByte", kTwoPieces, kLeavesAll},
    {"CvtColorDiffusionBitByte CvtColorDiffusionByteBit", kTwoPieces, kReleasesAllAndAsks},
    {"CvtColorDiffusionBitBit CvtColorDiffusionByteByte", kTwoPieces, kReleasesAllAndAsks},
    {"CvtColorDiffusionByteByte CvtShortCutDiffusion CvtShortCutDiffusionByte", {}, kReleasesItsCopy},
    {"CvtShortCutDiffusion CvtShortCutDiffusionWord", {.depth = 16}, kReleasesItsCopy},
    {"CvtShortCutDiffusion CvtShortCutDiffusionLong", {.depth = 32}, kReleasesItsCopy},
    {"CvtColorDitherBitByte CvtColorDitherByteBit", kTwoPieces, kReleasesAll},
    {"CvtColorDitherBitBit CvtColorDitherByteByte", kTwoPieces, kReleasesAll},
    {"CvtScaleUpWidth CvtScaleUpHeight CvtScaleDownWidth CvtScaleDownHeight", {}, kReleasesItsCopy},
    {"CvtScaleUpWidth", kWider, kEnlarges},
    {"CvtScaleUpHeight", kTaller, kEnlarges},
    {"CvtScaleDownWidth", {.toWidth = 2}, kReduces},
    {"CvtScaleDownHeight", {.toHeight = 1}, kReduces},
    {"CvtScaleDownWidth", {.toWidth = 2, .decimates = true}, kReduces},
    {"CvtScaleDownHeight", {.toHeight = 1, .decimates = true}, kReduces},
    {"CvtScaleDownHeight", {.lines = 1, .toHeight = 1, .decimates = true}, kReducesToNothing},
    {"CvtScaleUpWidthBit CvtScaleUpWidthByte", kWider, kEnlargingWorker},
    {"CvtScaleUpHeightBit CvtScaleUpHeightByte", kTaller, kEnlargingWorker},
    {"CvtScaleDownWidthBit CvtScaleDownWidthByte", {.toWidth = 2}, kReducingWorker},
    {"CvtScaleDownHeightBit CvtScaleDownHeightByte", {.toHeight = 1}, kReducingWorker},
    {"CvtDecimateWidthBit CvtDecimateWidthByte", {.toWidth = 2}, kReducingWorker},
    {"CvtDecimateHeightBit CvtDecimateHeightByte", {.toHeight = 1}, kReducingWorker},
    {"CvtPrepareSmoothBit CvtPrepareSmoothByte", {.bandLimit = 4}, kPrepares},
    {"CvtScaleSmoothGray", kSmoothGrays, kKernel},
    {"CvtScaleSmoothRGB", kSmoothColors, kKernel},
    {"CvtScaleSmooth", {.toWidth = 2, .isGray = true}, kSmoothInGray},
    {"CvtScaleSmooth", {.width = 2, .toWidth = 2, .toHeight = 4, .bandLimit = 8}, kSmoothInColor},
    {"Cvtr2r", {.toWidth = 2, .clipX0 = 1, .chain = true, .method = 1}, kChain},
    {"CvtOpenPlanePixel CvtClosePlanePixel CvtOpenPackedPixel CvtClosePackedPixel", {}, kCursor},
    {"CvtCreateCRLA CvtDestroyCRLA", {}, kContext}};

/// Exports that take no block, hand nothing on and ask nobody.
inline constexpr const char* kTakeNothing =
    "CvtFlipBits CvtCanShortCutDiffusion CvtGetDitherIndex CvtWritePlaneTranslucentLine "
    "CvtWritePackedTranslucentLine CvtWritePackedTransluceLineWord CvtWritePackedTransluceLineLong "
    "CvtDistExtendedRGB CvtClosestExtendedRGB CvtSearchGrayArray CvtSearchOctree";

}  // namespace cvt::test
