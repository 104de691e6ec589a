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
// and answer kCvtOk; kCvtNoDescriptor when the descriptor cannot be copied, nothing being held then;
// kCvtNoMemory when a cursor or a band cannot be had; or the nonzero status of the context's convertProc
// unchanged. What else they answer, and what a failure leaves allocated, is said with each family. None of
// them throws, logs or keeps state outside the context.
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

// ---- Direct colour ----
//
// Every value becomes red, green and blue in the channels of the destination: a third of its bits each, at
// most 8, cut from the top (15 and 16 bits are 5-5-5). Palette indices are looked up in the source's palette
// by their whole value; direct colour passes through gamma when that is active. The output is cut into
// sub-bands about the size of the input, none larger than the first. Packed pixels hold red highest, planes
// hold it lowest. A failure releases nothing, as with nearest colour.

/// Planes to packed direct colour, stored in 16 or 32 bits.
CVT_EXPORT CvtStatus CVT_CALL CvtBitRGBPacked(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                              tagCRLA* context);
/// Packed pixels to packed direct colour. When both images have the same depth and neither gamma nor the
/// colour adjustments are on, the band itself is handed on with a copy that asks for nothing more; the copy is
/// then released whatever convertProc answers.
CVT_EXPORT CvtStatus CVT_CALL CvtByteRGBPacked(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                               tagCRLA* context);
/// Planes to planes of direct colour; hands bands on unchanged as CvtByteRGBPacked does.
CVT_EXPORT CvtStatus CVT_CALL CvtBitRGBPlane(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                             tagCRLA* context);
/// Packed pixels to planes of direct colour.
CVT_EXPORT CvtStatus CVT_CALL CvtByteRGBPlane(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                              tagCRLA* context);

// ---- Clipping ----
//
// The band is cut in place to the source's clip rectangle, clipX0 to clipX1 and clipY0 to clipY1 with the end
// not included, and handed on with a copy that describes the clipped image: no clip option, the rectangle as
// origin and size, and clipComplete 1 once the rectangle ends within the band or above it. A band outside the
// rectangle is handed on with 0 lines. The rectangle must lie within the band's columns.
//
// kCvtNoMemory  the band's header may have changed; the copy and a cursor that was opened stay allocated
// other         convertProc's status; the copy is released

/// Clips a band of planes.
CVT_EXPORT CvtStatus CVT_CALL CvtClipPlane(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                           tagCRLA* context);
/// Clips a band of packed pixels.
CVT_EXPORT CvtStatus CVT_CALL CvtClipPacked(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                            tagCRLA* context);

// ---- Translucent lines ----
//
// Write the context's line over what a band holds, sparing pixels that are transparent. Arguments of all:
//   cursor       in  the band
//   context      in  runLengths, values, runCount: the line
//   x, y         in  image column and line of its first pixel; runs are not cut at the band's right, so the
//                    caller passes no more pixels than fit
//   transparent  in  a byte for each pixel value, nonzero: leave what is there
// Returns the number of pixels that the runs cover, painted or not, in 16 bits.

/// Into planes. 0 when (x, y) lies outside the band. The table is indexed by the whole value.
CVT_EXPORT std::uint16_t CVT_CALL CvtWritePlaneTranslucentLine(tagPlaneData* cursor, tagCRLA* context,
                                                               std::uint16_t x, std::uint16_t y,
                                                               std::uint8_t* transparent);
/// Into packed pixels of any depth. 0 when (x, y) lies outside the band. Up to 16 bits a pixel the table is
/// indexed by the low 16 bits of a value. In pixels of up to 8 bits a value that is too wide also sets bits in
/// the pixels before it, within 16 bits.
CVT_EXPORT std::uint16_t CVT_CALL CvtWritePackedTranslucentLine(tagPackedData* cursor, tagCRLA* context,
                                                                std::uint16_t x, std::uint16_t y,
                                                                std::uint8_t* transparent);
/// Into pixels of 16 bits; (x, y) is not checked.
CVT_EXPORT std::uint16_t CVT_CALL CvtWritePackedTransluceLineWord(tagPackedData* cursor, tagCRLA* context,
                                                                  std::uint16_t x, std::uint16_t y,
                                                                  std::uint8_t* transparent);
/// Into pixels of 32 bits; (x, y) is not checked. The table is indexed by the whole value: 1 << 24 entries for
/// 24-bit colour.
CVT_EXPORT std::uint16_t CVT_CALL CvtWritePackedTransluceLineLong(tagPackedData* cursor, tagCRLA* context,
                                                                  std::uint16_t x, std::uint16_t y,
                                                                  std::uint8_t* transparent);

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

// ---- One bit: ordered dither ----
//
// A pixel is white, the destination's entry nearest to white, where the threshold of its image position lies
// below its gray level, and black elsewhere. The context's ditherMatrix is anchored at image position (0, 0);
// neither of its dimensions may be 0. Channels weigh as in error diffusion; progressProc is not asked. A
// failing convertProc leaves the descriptor copy, the input cursor and the sub-band allocated.

/// Planes to packed pixels. kCvtNoMemory: nothing is left allocated.
CVT_EXPORT CvtStatus CVT_CALL CvtMonochromeDitherBitByte(tagRasterPlane** band, tagIGFD* source,
                                                         tagIGFD* destination, tagCRLA* context);
/// Packed pixels to planes. kCvtNoMemory: what was taken stays allocated.
CVT_EXPORT CvtStatus CVT_CALL CvtMonochromeDitherByteBit(tagRasterPacked** band, tagIGFD* source,
                                                         tagIGFD* destination, tagCRLA* context);
/// Planes to planes. kCvtNoMemory: what was taken stays allocated.
CVT_EXPORT CvtStatus CVT_CALL CvtMonochromeDitherBitBit(tagRasterPlane** band, tagIGFD* source,
                                                        tagIGFD* destination, tagCRLA* context);
/// Packed pixels to packed pixels. kCvtNoMemory: what was taken stays allocated.
CVT_EXPORT CvtStatus CVT_CALL CvtMonochromeDitherByteByte(tagRasterPacked** band, tagIGFD* source,
                                                          tagIGFD* destination, tagCRLA* context);

// ---- Palettes: error diffusion ----
//
// A pixel gets the entry that the context's search finds for its colour and the errors of its neighbours
// (Floyd-Steinberg, left to right). The context's errorRow, three entries a pixel of the line, carries the
// error from line to line and band to band. Plane values hold red lowest, packed values blue. kCvtStopped when
// progressProc, asked once a line, says so. Every failure releases all that the call holds.

/// Planes to packed pixels.
CVT_EXPORT CvtStatus CVT_CALL CvtColorDiffusionBitByte(tagRasterPlane** band, tagIGFD* source,
                                                       tagIGFD* destination, tagCRLA* context);
/// Packed pixels to planes.
CVT_EXPORT CvtStatus CVT_CALL CvtColorDiffusionByteBit(tagRasterPacked** band, tagIGFD* source,
                                                       tagIGFD* destination, tagCRLA* context);
/// Planes to planes.
CVT_EXPORT CvtStatus CVT_CALL CvtColorDiffusionBitBit(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                                      tagCRLA* context);
/// Packed pixels to packed pixels; by the short-cut when CvtCanShortCutDiffusion says so.
CVT_EXPORT CvtStatus CVT_CALL CvtColorDiffusionByteByte(tagRasterPacked** band, tagIGFD* source,
                                                        tagIGFD* destination, tagCRLA* context);

// ---- Palettes: the short-cut of error diffusion ----
//
// The band's pixels are overwritten in place by 8-bit indices, rows padded to 16 bits, and the band is handed
// on with bitsPerPixel 8. Searches with CvtSearchRGBCube alone; progressProc is not asked.
//
// kCvtNoDescriptor  the descriptor could not be copied; the band is as it was
// other             convertProc's status; the band is converted, nothing is left allocated

/// Whether the short-cut takes a band: 1 or 0. It does from 5 bits a pixel to a palette of 5 to 8 bits by
/// error diffusion, without gamma, gray search or inversion. The first yes is kept in the context's
/// diffusionFlags and holds for every later band.
CVT_EXPORT std::uint16_t CVT_CALL CvtCanShortCutDiffusion(tagRasterPacked** band, tagIGFD* source,
                                                          tagIGFD* destination, tagCRLA* context);
/// Converts by the routine for the band's depth; kCvtWrongDepth for 4 bits or less, the band as it was.
CVT_EXPORT CvtStatus CVT_CALL CvtShortCutDiffusion(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                                   tagCRLA* context);
/// Bands stored in 8 bits a pixel: indices into the source's palette.
CVT_EXPORT CvtStatus CVT_CALL CvtShortCutDiffusionByte(tagRasterPacked** band, tagIGFD* source,
                                                       tagIGFD* destination, tagCRLA* context);
/// Bands stored in 16 bits a pixel: channels of a third of the source's depth, blue lowest.
CVT_EXPORT CvtStatus CVT_CALL CvtShortCutDiffusionWord(tagRasterPacked** band, tagIGFD* source,
                                                       tagIGFD* destination, tagCRLA* context);
/// Bands stored in 32 bits a pixel: blue, green, red, and a byte that is not looked at.
CVT_EXPORT CvtStatus CVT_CALL CvtShortCutDiffusionLong(tagRasterPacked** band, tagIGFD* source,
                                                       tagIGFD* destination, tagCRLA* context);

// ---- Palettes: ordered dither ----
//
// A pixel's colour is pushed by the threshold of the image position one column to its right and looked up in
// the context's searchTable (gray ramp or colour cube, with ditherSteps) or, for destinations of 3 to 8 bits,
// in its cubeTable when there is one. Plane values hold red lowest, packed values blue. progressProc is not
// asked. Every failure releases all that the call holds; kCvtNoDescriptor when the descriptor could not be
// copied.

/// Planes to packed pixels.
CVT_EXPORT CvtStatus CVT_CALL CvtColorDitherBitByte(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                                    tagCRLA* context);
/// Packed pixels to planes.
CVT_EXPORT CvtStatus CVT_CALL CvtColorDitherByteBit(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                                    tagCRLA* context);
/// Planes to planes.
CVT_EXPORT CvtStatus CVT_CALL CvtColorDitherBitBit(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                                   tagCRLA* context);
/// Packed pixels to packed pixels.
CVT_EXPORT CvtStatus CVT_CALL CvtColorDitherByteByte(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                                     tagCRLA* context);

/// Palette index of one colour at an image position, taken as it is given and read as unsigned 16 bits. Never
/// uses the cubeTable, so the band routines may answer otherwise; the descriptors are not looked at.
CVT_EXPORT std::uint16_t CVT_CALL CvtGetDitherIndex(tagIGFD* source, tagIGFD* destination, tagCRLA* context,
                                                    std::int16_t column, std::int16_t line, IRGB* color);

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

// ---- Scaling ----
//
// The four plain scalers change one direction at a time: they take over the destination's size and origin
// along it, move what they make into the destination's frame and hand it on. At equal sizes only the band's
// own position is moved; an operation that is no raster band goes to the destination's list. Source sizes
// must not be 0. Their workers make one band a call, for bands of planes (Bit) and of packed pixels (Byte):
//
//   band              in/out  a packed band is relabelled with the depth that its pixels are stored in
//   srcWidth, ...     in      image sizes before and after, along the direction
//   Returns the new band, the caller's to release; null when memory is exhausted or no line fits a sub-band,
//   and then nothing that was taken is given back.
//
// A failure leaves the scaler's descriptor copy, and a band that convertProc refused, allocated. Besides the
// common statuses: kCvtNoDescriptor when the descriptor copy cannot be had; nothing is left then.

/// Enlarges in width: output pixel j shows source pixel j * srcWidth / dstWidth. Sub-bands have at most
/// 65,000 bytes of pixels.
CVT_EXPORT CvtStatus CVT_CALL CvtScaleUpWidth(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                              tagCRLA* context);
/// index  in/out  number of the sub-band to make, 0 first; then that of the next one, 0 after the last
CVT_EXPORT tagRasterPlane* CVT_CALL CvtScaleUpWidthBit(tagRasterPlane** band, std::int32_t srcWidth,
                                                       std::int32_t dstWidth, tagCRLA* context,
                                                       std::int16_t* index);
/// index  in/out  as above
CVT_EXPORT tagRasterPacked* CVT_CALL CvtScaleUpWidthByte(tagRasterPacked** band, std::int32_t srcWidth,
                                                         std::int32_t dstWidth, tagCRLA* context,
                                                         std::int16_t* index);

/// Enlarges in height: output line k shows source line k * srcHeight / dstHeight. The line that is being
/// replicated is kept in ownedBuffer1 and ownedBuffer2, which must be as large as the context's run arrays;
/// the number of its runs is not, so the links behind this one must leave runCount alone. Bands must arrive in
/// order, each where the last one ended.
CVT_EXPORT CvtStatus CVT_CALL CvtScaleUpHeight(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                               tagCRLA* context);
/// more  out  1: the new band is full, call again with the same input; 0: the input is used up
CVT_EXPORT tagRasterPlane* CVT_CALL CvtScaleUpHeightBit(tagRasterPlane** band, std::int32_t srcHeight,
                                                        std::int32_t dstHeight, tagCRLA* context,
                                                        std::int16_t* more);
/// more  out  as above
CVT_EXPORT tagRasterPacked* CVT_CALL CvtScaleUpHeightByte(tagRasterPacked** band, std::int32_t srcHeight,
                                                          std::int32_t dstHeight, tagCRLA* context,
                                                          std::int16_t* more);

/// Reduces in width, one output band for each input band: by plain sampling when scaleDownMethod is kDecimate,
/// else so that runs of the destination's keepColor stay at least one pixel wide. Moves images of equal width
/// to another origin as well.
CVT_EXPORT CvtStatus CVT_CALL CvtScaleDownWidth(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                                tagCRLA* context);
/// keepColor  in  pixel value whose runs never vanish
CVT_EXPORT tagRasterPlane* CVT_CALL CvtScaleDownWidthBit(tagRasterPlane** band, std::int32_t srcWidth,
                                                         std::int32_t dstWidth, tagCRLA* context,
                                                         std::int16_t keepColor);
/// keepColor  in  as above
CVT_EXPORT tagRasterPacked* CVT_CALL CvtScaleDownWidthByte(tagRasterPacked** band, std::int32_t srcWidth,
                                                           std::int32_t dstWidth, tagCRLA* context,
                                                           std::int16_t keepColor);

/// Reduces in height, one output band for each input band: by plain sampling when scaleDownMethod is kDecimate,
/// else by merging the source lines of an output line: a pixel takes the first value among them that differs
/// from the output line before. The last line of an output band is written even when its group is not
/// complete, and again by the band that goes on with it. ownedBuffer1 and ownedBuffer2 must have a 16-bit and a
/// 32-bit entry a pixel, zeroed before the first band.
CVT_EXPORT CvtStatus CVT_CALL CvtScaleDownHeight(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                                 tagCRLA* context);
/// Merges the lines of planes.
CVT_EXPORT tagRasterPlane* CVT_CALL CvtScaleDownHeightBit(tagRasterPlane** band, std::int32_t srcHeight,
                                                          std::int32_t dstHeight, tagCRLA* context);
/// Merges the lines of packed pixels.
CVT_EXPORT tagRasterPacked* CVT_CALL CvtScaleDownHeightByte(tagRasterPacked** band, std::int32_t srcHeight,
                                                            std::int32_t dstHeight, tagCRLA* context);

/// Samples the pixels of planes: a run is as long as the whole output pixels that it covers, or vanishes.
CVT_EXPORT tagRasterPlane* CVT_CALL CvtDecimateWidthBit(tagRasterPlane** band, std::int32_t srcWidth,
                                                        std::int32_t dstWidth, tagCRLA* context);
/// Samples packed pixels.
CVT_EXPORT tagRasterPacked* CVT_CALL CvtDecimateWidthByte(tagRasterPacked** band, std::int32_t srcWidth,
                                                          std::int32_t dstWidth, tagCRLA* context);
/// Samples the lines of planes: the last source line of every group. A band in which no output line ends gives
/// a band of no lines.
CVT_EXPORT tagRasterPlane* CVT_CALL CvtDecimateHeightBit(tagRasterPlane** band, std::int32_t srcHeight,
                                                         std::int32_t dstHeight, tagCRLA* context);
/// Samples the lines of packed pixels.
CVT_EXPORT tagRasterPacked* CVT_CALL CvtDecimateHeightByte(tagRasterPacked** band, std::int32_t srcHeight,
                                                           std::int32_t dstHeight, tagCRLA* context);

// ---- Smooth scaling ----

/// Scales a band to the destination's size in both directions by area averaging, in gray or in 24-bit colour.
///
/// The context's smoothCurrentLine and ownedBuffer2 must have an entry for every output pixel, smoothSums one
/// (gray) or three (colour). Bands must arrive in order, each where the last one ended; one in which no output
/// line ends is not read. The next stage's bandLimit must hold a prepared line and an output line.
///
/// kCvtNoDescriptor  the descriptor copy or the gray ramp could not be had; a copy is left allocated
/// other             everything is given back, except what the kernel below left
CVT_EXPORT CvtStatus CVT_CALL CvtScaleSmooth(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                             tagCRLA* context);

/// Makes one sub-band of gray levels (prepared depth 8) or 32-bit colours out of a band of planes.
///
/// prepared  in      descriptor of what is made
/// index     in/out  number of the sub-band to make, 0 first; then that of the next one, 0 after the last
/// Returns the new band, the caller's to release; null when memory is exhausted or no line fits bandLimit, and
/// then nothing that was taken is given back.
CVT_EXPORT tagRasterPacked* CVT_CALL CvtPrepareSmoothBit(tagRasterPlane** band, tagIGFD* source, tagIGFD* prepared,
                                                         tagCRLA* context, std::uint16_t* index);
/// The same out of packed pixels.
CVT_EXPORT tagRasterPacked* CVT_CALL CvtPrepareSmoothByte(tagRasterPacked** band, tagIGFD* source,
                                                          tagIGFD* prepared, tagCRLA* context,
                                                          std::uint16_t* index);

/// Scales a prepared band of gray levels. The last sub-band may write the line just below itself, which hosts
/// drop. Sums wrap when 255 * source height * destination height exceeds 32 bits. A failure gives nothing
/// back and leaves the context's state as before the call.
CVT_EXPORT CvtStatus CVT_CALL CvtScaleSmoothGray(tagRasterPacked* band, tagIGFD* prepared, tagIGFD* destination,
                                                 tagCRLA* context);
/// Scales a prepared band of 32-bit colours; the same otherwise.
CVT_EXPORT CvtStatus CVT_CALL CvtScaleSmoothRGB(tagRasterPacked* band, tagIGFD* prepared, tagIGFD* destination,
                                                tagCRLA* context);
