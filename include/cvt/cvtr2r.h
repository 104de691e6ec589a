// cvtr2r – everything that the library exports.
//
// A host creates a context, fills in its settings, installs Cvtr2r as its convertProc, and calls Cvtr2r
// once for each band of an image, top to bottom. The other routines are the links of the chain that
// Cvtr2r runs, exported for hosts that drive them directly.
//
// Routines that take a band, two descriptors and a context share one contract:
//   band         in/out  address of the band pointer; the band stays the caller's
//   source       in      what the band is; never changed (routines edit copies)
//   destination  in      what the next stage wants
//   context      in/out  settings, line buffer and the state kept between bands
// and answer kCvtOk, kCvtNoMemory when a cursor or a band cannot be had, or the nonzero status of the
// context's convertProc unchanged. What else they answer, and what a failure leaves allocated, is said
// with each family. None of them throws, logs or keeps state outside the context.
#pragma once

#include "cvt/host.h"
#include "cvt/records.h"
#include "cvt/status.h"

#if defined(_WIN32)
#define CVT_EXPORT
#else
#define CVT_EXPORT __attribute__((visibility("default")))
#endif

// ---- Entry ----

/// Performs the one conversion that a band needs next, or hands it to the next stage when none is left.
///
/// The order of decisions: stop, empty band, clip, smooth scaling, reduce width, reduce height, enlarge
/// width, enlarge height, direct colour, then halftoning or plain mapping to one bit or to a palette.
///
/// kCvtStopped        the source's progressProc answered nonzero; nothing was done
/// kCvtNextStageFull  the next stage succeeded, but its operation list is closed, full or out of memory
/// other              status of the routine that ran, of the next stage, or its operation list's error
extern "C" CVT_EXPORT CvtStatus CVT_CALL Cvtr2r(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                                tagCRLA* context);

// ---- Cursors and context ----

/// Opens a cursor on a band of planes; null when memory is exhausted. The band is not checked and must
/// outlive the cursor. The caller closes it.
CVT_EXPORT tagPlaneData* CVT_CALL CvtOpenPlanePixel(tagRasterPlane* band);

/// Opens a cursor on a packed band; null when memory is exhausted. The caller closes it.
CVT_EXPORT tagPackedData* CVT_CALL CvtOpenPackedPixel(tagRasterPacked* band);

/// Releases a cursor of planes; the band is not touched.
CVT_EXPORT void CVT_CALL CvtClosePlanePixel(tagPlaneData* cursor);

/// Releases a cursor of packed pixels; the band is not touched.
CVT_EXPORT void CVT_CALL CvtClosePackedPixel(tagPackedData* cursor);

/// Creates a context with a line buffer of `capacity` runs; the other fields are as the heap gave them.
///
/// context   out  the new context, null when it could not be had
/// capacity  in   pixels of the widest line
///
/// kCvtOk           runCount is the capacity; release with CvtDestroyCRLA
/// kCvtNoContext    *context is null
/// kCvtNoRunArrays  *context is partly built and still to be released with CvtDestroyCRLA, which needs
///                  the fields that it frees to be null or blocks: fill them first
[[nodiscard]] CVT_EXPORT CvtStatus CVT_CALL CvtCreateCRLA(tagCRLA** context, std::uint16_t capacity);

/// Releases a context with its line buffer, errorRow, ownedBuffer2 and ownedBuffer1, those that are not
/// null. The smooth-scaling buffers stay the host's. Returns the heap's answer for the context itself.
CVT_EXPORT CvtStatus CVT_CALL CvtDestroyCRLA(tagCRLA* context);

/// Inverts every whole 16-bit word of a band's pixels in place, row padding included. The block size in
/// the band's prefix bounds the work; it must be 12 or more.
CVT_EXPORT void CVT_CALL CvtFlipBits(tagRasterPlane* band);

// ---- Depth and layout: nearest colour ----
//
// Palette indices are mapped by CvtSnap, direct colours by the context's search table after gamma. The
// output is cut into sub-bands about the size of the input. A failure releases nothing: the descriptor
// copy, the input cursor and the current sub-band stay allocated.

/// Planes to packed pixels.
CVT_EXPORT CvtStatus CVT_CALL CvtBitByte(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                         tagCRLA* context);
/// Packed pixels to planes.
CVT_EXPORT CvtStatus CVT_CALL CvtByteBit(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                         tagCRLA* context);
/// Planes to planes.
CVT_EXPORT CvtStatus CVT_CALL CvtBitBit(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                        tagCRLA* context);
/// Packed pixels to packed pixels.
CVT_EXPORT CvtStatus CVT_CALL CvtByteByte(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                          tagCRLA* context);

/// Relabels a band of one bit a pixel in place as the kind that the destination wants, inverts it when
/// sameColorMap and invertMono say so, and hands it on. A failing convertProc leaves the descriptor copy.
CVT_EXPORT CvtStatus CVT_CALL Cvt1Bit1Byte(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                           tagCRLA* context);

// ---- One bit: error diffusion ----
//
// Gray levels are diffused against 127 (Floyd-Steinberg, left to right) to the destination's entries
// nearest to black and white. The context's errorRow carries the error from line to line and band to
// band. In a direct-colour value the lowest channel weighs as red, whatever the layout. kCvtStopped when
// progressProc, asked once a line, says so. Every failure releases all that the call holds.

/// Planes to packed pixels. errorRow is indexed by image column, and the pixel of column left + n is
/// written at column 2 * left + n: feed it bands that start at column 0.
CVT_EXPORT CvtStatus CVT_CALL CvtMonochromeDiffusionBitByte(tagRasterPlane** band, tagIGFD* source,
                                                            tagIGFD* destination, tagCRLA* context);
/// Packed pixels to planes.
CVT_EXPORT CvtStatus CVT_CALL CvtMonochromeDiffusionByteBit(tagRasterPacked** band, tagIGFD* source,
                                                            tagIGFD* destination, tagCRLA* context);
/// Planes to planes.
CVT_EXPORT CvtStatus CVT_CALL CvtMonochromeDiffusionBitBit(tagRasterPlane** band, tagIGFD* source,
                                                           tagIGFD* destination, tagCRLA* context);
/// Packed pixels to packed pixels.
CVT_EXPORT CvtStatus CVT_CALL CvtMonochromeDiffusionByteByte(tagRasterPacked** band, tagIGFD* source,
                                                             tagIGFD* destination, tagCRLA* context);

// ---- Palette search ----

/// Squared distance of two colours, all channels alike, in 32-bit arithmetic that wraps.
CVT_EXPORT std::int32_t CVT_CALL CvtDistExtendedRGB(WRGB* color, IRGB* entry);

/// Index of the palette entry nearest to a colour, by trying all 1 << bitsPerPixel; the lowest of equals.
/// 0 when none is nearer than a squared distance of 4,000,000.
CVT_EXPORT std::int16_t CVT_CALL CvtClosestExtendedRGB(WRGB* color, tagIGFD* descriptor);

/// Palette index of a gray level: entry `red`, held to 0 to 255, of a table of 256.
CVT_EXPORT std::uint16_t CVT_CALL CvtSearchGrayArray(std::uint8_t* table, WRGB* color);

/// Palette index of a colour by descending an octree: the leaf's separator decides, else its candidate
/// nearest by the descriptor's palette, else its count is the index. The tree is not checked.
CVT_EXPORT std::uint16_t CVT_CALL CvtSearchOctree(tagIGFD* descriptor, OCTtag* root, WRGB* color);
