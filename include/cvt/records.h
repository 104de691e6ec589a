// The records that a host, this library and the stages of a pipeline exchange.
//
// Plain data, byte-packed: every field follows the one before it without a gap, because hosts share
// these records as bytes. Widths and signs are part of the contract: routines sign-extend, compare
// and truncate the fields exactly as declared here. Nothing in this file knows how a conversion works.
#pragma once

#include <cstddef>
#include <cstdint>

// The platform's standard-call convention, where it has one; elsewhere the default serves.
#if defined(_WIN32) && !defined(_WIN64)
#define CVT_CALL __stdcall
#else
#define CVT_CALL
#endif

struct tagOpList;  // an operation list; only its owner, the host, knows what is inside

#pragma pack(push, 1)

/// A palette colour: three unsigned channels, red first. Palettes are arrays of these.
struct IRGB {
  std::uint8_t red, green, blue;
};
constexpr bool operator==(IRGB a, IRGB b) { return a.red == b.red && a.green == b.green && a.blue == b.blue; }

/// A colour that may lie outside 0 to 255, as error diffusion makes them. Red first.
struct WRGB {
  std::int16_t red, green, blue;
};

/// A band of bit planes. The address of a band is the address of this header; the pixels follow it.
///
/// Four bytes before the header stand the operation code (kPlaneBand) and the size in bytes of header
/// and pixels, both as 16-bit words: a band never exceeds 65535 bytes.
/// Plane k holds bit k of every pixel value, as lineCount rows of ((width + 15) >> 3) & ~1 bytes; the
/// leftmost pixel of a row is the top bit of its first byte.
struct tagRasterPlane {
  std::uint16_t left;          // image column of the first pixel of every line
  std::uint16_t top;           // image line of the first line
  std::uint16_t width;         // pixels in a line
  std::uint16_t lineCount;     // lines in the band, 0 allowed
  std::uint16_t bitsPerPixel;  // planes
  std::uint16_t planeBytes;    // bytes in one plane
};

/// A band of packed pixels; prefix (kPackedBand) and header as for a band of planes.
///
/// With p = bitsPerPixel rounded up to a power of two, a row is ((width * p + 15) >> 3) & ~1 bytes.
/// Pixels of up to 8 bits fill their bytes from the top bits down; 16- and 32-bit pixels are
/// little-endian words. A direct-colour value holds red in its top channel and blue in its lowest.
struct tagRasterPacked {
  std::uint16_t left;
  std::uint16_t top;
  std::uint16_t width;
  std::uint16_t lineCount;
  std::uint16_t bitsPerPixel;  // bits in a pixel
  std::uint16_t planeBytes;    // not used
};

/// A cursor over a band of planes: the band's geometry in the form that line access wants.
struct tagPlaneData {
  std::uint16_t rowBytes;    // bytes in a row of one plane
  std::uint16_t left;        // first image column
  std::uint16_t top;         // first image line
  std::uint16_t right;       // image column after the last, 16-bit sum
  std::uint16_t bottom;      // image line after the last, 16-bit sum
  std::uint8_t* data;        // first byte of the pixels
  std::uint32_t planeCount;  // planes
  std::uint16_t planeBytes;  // bytes in one plane
};

/// A cursor over a band of packed pixels.
struct tagPackedData {
  std::uint16_t rowUnits;  // row length in 16-bit units; in 32-bit units for depthClass 5
  std::uint16_t left;
  std::uint16_t top;
  std::uint16_t right;
  std::uint16_t bottom;
  std::uint8_t* data;
  std::uint16_t depthClass;  // 0: 1 bit; 1: 2; 2: 3 and 4; 3: 5 to 8; 4: 9 to 16; 5: 17 and more, and 0
};

/// What an image is (source) or what the next stage wants it to be (destination).
struct tagIGFD {
  tagOpList* opList;                                    // operation list of the stage that this image feeds
  std::int16_t(CVT_CALL* progressProc)(std::uint32_t);  // nonzero answer: stop the conversion
  std::uint16_t rasterKind;                             // kPlaneKind, kPackedKind; 0: nothing is left to convert
  std::uint16_t clipComplete;  // 1: a band reached or passed the last line of the clip rectangle
  std::int16_t originX;        // image position
  std::int16_t originY;
  std::int32_t imageWidth;  // image size in pixels and lines
  std::int32_t imageHeight;
  std::uint8_t bitsPerPixel;        // 1: monochrome; direct colour: three channels of a third each, at most 8
  std::uint8_t sampleDepth;         // 8 in the copies that smooth scaling makes, otherwise the host's affair
  std::uint8_t colorFlags;          // kIndexedColor set: values are palette indices; clear: direct colour
  std::int16_t keepColor;           // pixel value whose runs a reduction in width never lets vanish
  std::uint16_t keepColorWords[3];  // the host's; smooth scaling clears them together with keepColor
  IRGB* palette;                    // 1 << bitsPerPixel colours
  std::uint16_t options;            // kClipOption, kSmoothOption
  std::uint32_t progressData;       // handed to progressProc
  std::int16_t clipX0;              // clip rectangle: first column,
  std::int16_t clipY1;              //   line after the last,
  std::int16_t clipX1;              //   column after the last,
  std::int16_t clipY0;              //   first line
};

/// The record of the stage that follows, as far as conversions read it.
struct tagStage {
  std::uint16_t bandLimit;  // bytes in the largest band that the stage takes; never 0
};

/// How a finished band is handed to the next stage.
struct execute {
  tagStage** stage;
  tagRasterPacked** rasterSlot;  // receives the band, of either kind, just before the stage runs
  void* core;                    // the host's own
};

struct tagCRLA;

/// The signature of Cvtr2r; bands of both kinds travel through it as packed ones.
using CvtConvertProc = std::int16_t(CVT_CALL*)(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                               tagCRLA* context);

/// A conversion's context: a line of pixels as runs, the settings, and the state kept between bands.
///
/// Entry k of the two run arrays stands for runLengths[k] neighbouring pixels of value values[k].
struct tagCRLA {
  std::uint16_t* runLengths;
  std::uint32_t* values;
  std::uint16_t runCount;            // before a line is read: pixels wanted; after: entries delivered
  void* ownedBuffer1;                // enlarging in height: held run lengths; reducing: u16 flag a pixel
  void* ownedBuffer2;                // held values; u32 merged value a pixel; smooth: previous line
  std::uint32_t* smoothCurrentLine;  // smooth scaling: line being consumed, u32 an output pixel
  std::uint32_t* smoothSums;         // smooth scaling: u32 sums, one (gray) or three (colour) an output pixel
  std::uint16_t mergeLeft;           // reducing in height: left of the last band
  std::uint16_t nextSourceLine;      // reducing in height, smooth scaling: line after the last one consumed
  std::uint16_t upSourceLine;        // enlarging in height: next line to read
  std::uint16_t upOutputLine;        // enlarging in height: next line to write
  std::uint16_t mergeWidth;          // reducing in height: pixels in a merged line
  std::uint32_t smoothOutputRemain;  // smooth scaling: units left in the output line
  std::uint32_t scaleAccumulator;    // scaling term carried from band to band
  std::int16_t* errorRow;            // error diffusion: one entry a column, three for colour; the host's to zero
  std::uint8_t* ditherMatrix;        // thresholds, ditherHeight rows of ditherWidth
  std::uint8_t ditherWidth;
  std::uint8_t ditherHeight;
  std::uint8_t halftoneMethod;   // kNearest, kDiffusion, anything else ordered dither (kFixedBlock: 8 x 8)
  std::uint8_t scaleDownMethod;  // kDecimate: plain sampling; anything else keeps thin features
  std::uint8_t sameColorMap;     // nonzero: source and destination colours agree
  std::uint8_t invertMono;       // nonzero: a monochrome band is to be inverted
  std::uint8_t grayPalette;      // 1: destination is a gray ramp, searched with CvtSearchGrayArray
  std::uint16_t diffusionFlags;  // kShortCutLatch
  std::uint8_t* searchTable;     // 256 indices by gray level, or 32768 by 5 bits of red, green and blue
  execute* next;                 // the next stage
  std::uint8_t* ditherSteps;     // colour dither: per palette index 2 (gray ramp) or 8 step sizes
  std::uint16_t colorAdjust1;    // the host's colour adjustments; 0 where a direct-colour
  std::uint16_t colorAdjust2;    //   band may pass unconverted
  std::uint16_t gammaActive;     // nonzero: direct-colour values pass through CvtAdjustGammaValue
  std::uint8_t* cubeTable;       // palette index of each cell of a uniform RGB cube, or null
  CvtConvertProc convertProc;    // takes every band that a routine made; Cvtr2r itself as a rule
  void* core;                    // the host's own
};

/// Divides the colours of an octree leaf between two palette entries by a plane.
struct OCTseparator {
  std::int16_t a0, a1, a2;  // coefficients of red, green and blue
  std::int32_t threshold;
  std::uint16_t indexAbove;  // colours whose sum exceeds threshold
  std::uint16_t indexBelow;  // all others
};

/// A node of a palette octree. A node without a first child is a leaf; any other has all eight.
struct OCTtag {
  std::uint32_t builderWord;            // the builder's own
  std::uint8_t splitR, splitG, splitB;  // a channel at or above its threshold is in the upper half
  std::int16_t count;                   // leaf: number of candidates, or the index when there is nothing else
  std::uint8_t* candidates;             // leaf: palette indices to choose from, or null
  OCTseparator* separator;              // leaf: goes before the candidates, or null
  OCTtag* children[8];                  // child 4 * upper red + 2 * upper green + upper blue
};

#pragma pack(pop)

// Operation codes, in the word four bytes before a band.
inline constexpr std::uint16_t kPlaneBand = 20;
inline constexpr std::uint16_t kPackedBand = 21;
inline constexpr std::uint32_t kBandHeaderBytes = 12;
inline constexpr std::uint32_t kBandPrefixBytes = 4;

// tagIGFD::rasterKind
inline constexpr std::uint16_t kPlaneKind = 4;
inline constexpr std::uint16_t kPackedKind = 8;

// tagIGFD::colorFlags
inline constexpr std::uint8_t kIndexedColor = 0x80;

// tagIGFD::options
inline constexpr std::uint16_t kClipOption = 0x80;
inline constexpr std::uint16_t kSmoothOption = 0x40;

// tagCRLA::halftoneMethod
inline constexpr std::uint8_t kNearest = 1;
inline constexpr std::uint8_t kDiffusion = 2;
inline constexpr std::uint8_t kFixedBlock = 3;

// tagCRLA::scaleDownMethod
inline constexpr std::uint8_t kDecimate = 2;

// tagCRLA::grayPalette
inline constexpr std::uint8_t kGrayRamp = 1;

// tagCRLA::diffusionFlags
inline constexpr std::uint16_t kShortCutLatch = 0x8000;

static_assert(sizeof(IRGB) == 3 && offsetof(IRGB, red) == 0 && offsetof(IRGB, blue) == 2);
static_assert(sizeof(WRGB) == 6 && offsetof(WRGB, red) == 0 && offsetof(WRGB, blue) == 4);
static_assert(sizeof(tagRasterPlane) == kBandHeaderBytes && sizeof(tagRasterPacked) == kBandHeaderBytes);
static_assert(offsetof(tagRasterPlane, left) == 0 && offsetof(tagRasterPlane, top) == 2 &&
              offsetof(tagRasterPlane, width) == 4 && offsetof(tagRasterPlane, lineCount) == 6 &&
              offsetof(tagRasterPlane, bitsPerPixel) == 8 && offsetof(tagRasterPlane, planeBytes) == 10);
static_assert(offsetof(tagRasterPacked, lineCount) == 6 && offsetof(tagRasterPacked, bitsPerPixel) == 8);
static_assert(offsetof(tagPlaneData, data) == 10 && sizeof(tagPlaneData) == 16 + sizeof(void*));
static_assert(offsetof(tagPackedData, data) == 10 && sizeof(tagPackedData) == 12 + sizeof(void*));
static_assert(offsetof(tagIGFD, sampleDepth) == offsetof(tagIGFD, bitsPerPixel) + 1 &&
              offsetof(tagIGFD, colorFlags) == offsetof(tagIGFD, sampleDepth) + 1);
static_assert(offsetof(tagIGFD, keepColor) == offsetof(tagIGFD, colorFlags) + 1 &&
              offsetof(tagIGFD, keepColorWords) == offsetof(tagIGFD, keepColor) + 2 &&
              offsetof(tagIGFD, palette) == offsetof(tagIGFD, keepColor) + 8);
static_assert(sizeof(OCTseparator) == 14 && offsetof(OCTseparator, threshold) == 6 &&
              offsetof(OCTseparator, indexAbove) == 10 && offsetof(OCTseparator, indexBelow) == 12);
static_assert(offsetof(OCTtag, count) == 7 && offsetof(OCTtag, candidates) == 9);
