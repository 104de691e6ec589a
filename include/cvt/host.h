// The operations that a host provides to the library: line and pixel access, descriptors and colour,
// the pipeline, the heap and the operation lists.
//
// The library declares them here and never defines them; a program links one host that does. Columns
// and lines are image coordinates: column x is pixel x - left of a row, line y is row y - top of the
// band. The library makes these calls in a fixed order and number that a host may count on.
#pragma once

#include "cvt/records.h"

// ---- Lines and pixels ----

/// Reads one line of a band of planes into the context as runs.
///
/// cursor   in      the band
/// context  in/out  runCount: most pixels to read; runLengths and values receive the runs, one for each
///                  pixel or merged ones, as the host likes
/// x, y     in      first column and line
/// Returns the number of runs stored, 0 when no pixel was wanted.
std::uint16_t CVT_CALL CvtReadPlaneLine(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y);

/// The same for a band of packed pixels.
std::uint16_t CVT_CALL CvtReadPackedLine(tagPackedData* cursor, tagCRLA* context, std::uint16_t x,
                                         std::uint16_t y);

/// Writes the context's first runCount runs into line y from column x on: bit k of a value to plane k.
void CVT_CALL CvtWritePlaneLine(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y);

/// The same into a band of packed pixels.
void CVT_CALL CvtWritePackedLine(tagPackedData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y);

/// Sets one pixel of a band of planes. A pixel outside the cursor's rectangle is dropped.
void CVT_CALL CvtWritePlanePixel(tagPlaneData* cursor, std::uint16_t x, std::uint16_t y, std::uint32_t value);

/// Sets one pixel of a packed band. A pixel outside the cursor's rectangle is dropped: smooth
/// scaling may write the line just below a band.
void CVT_CALL CvtWritePackedPixel(tagPackedData* cursor, std::uint16_t x, std::uint16_t y, std::uint32_t value);

// ---- Descriptors and colour ----

/// Makes a copy of a descriptor that the caller may edit; it shares the palette.
/// Returns null when memory is exhausted. The caller disposes of it with CvtDisposeIGFD.
tagIGFD* CVT_CALL CvtDupIGFD(tagIGFD* descriptor);

/// Releases a copy made by CvtDupIGFD; never the palette that it points at.
void CVT_CALL CvtDisposeIGFD(tagIGFD* copy);

/// Applies the context's tone curve to the three channels in place. The result is not used.
std::uint32_t CVT_CALL CvtAdjustGammaValue(tagCRLA* context, IRGB* color);

/// Replaces each of the first runCount values, source palette indices, by the destination's indices.
/// For a monochrome destination the mapping includes the inversion that invertMono asks for.
void CVT_CALL CvtSnap(tagCRLA* context);

/// Index of the descriptor's palette entry nearest to a colour.
std::int32_t CVT_CALL CvtClosestRGB(IRGB* color, tagIGFD* descriptor);

/// Palette index of a colour by the cube table of 32 x 32 x 32 cells, red most significant.
///
/// table  in  the context's searchTable
/// color  in  channels within 0 to 255
std::uint16_t CVT_CALL CvtSearchRGBCube(std::uint8_t* table, WRGB* color);

/// Whether all colours of a descriptor are gray: nonzero for yes. The second argument is 0.
std::uint16_t CVT_CALL CvtIsGray(tagIGFD* descriptor, std::int32_t mode);

// ---- Pipeline ----

/// Notes on a band, of either kind, what it is, just before it goes to the next stage; mode is 2.
void CVT_CALL CvtAssignRasterStatus(tagRasterPacked* band, tagIGFD* source, std::uint16_t mode);

/// Runs the next stage on the band that stands in next->rasterSlot; nonzero means failure.
/// The band stays the caller's: the stage copies what it keeps.
std::int16_t CVT_CALL CvtExecuteNextFunction(execute* next);

/// Sets up a conversion between two images; null when that fails. Not called by the library.
tagCRLA* CVT_CALL CvtOpenr2r(tagIGFD* source, tagIGFD* destination);

/// Ends a conversion set up by CvtOpenr2r. Not called by the library.
void CVT_CALL CvtCloser2r(tagCRLA* context);

// ---- Heap ----

/// A block of at least `size` bytes, contents undefined; null when memory is exhausted.
void* CVT_CALL SioAllocSMem(std::uint32_t size);

/// Usable bytes of a block.
std::uint32_t CVT_CALL SioSizeSMem(void* block);

/// Releases a block, or a band by the address four bytes before it. Returns 0 for success.
std::int16_t CVT_CALL SioFreeSMem(void* block);

// ---- Operation lists ----

/// Allocates an operation: a block of size + 4 bytes that starts with the code and the size as 16-bit words.
///
/// code  in  kPlaneBand or kPackedBand for a band
/// size  in  bytes behind the prefix; for a band, header and pixels
/// Returns the address just behind the prefix, null when memory is exhausted.
void* CVT_CALL SioCreateOp(std::uint32_t code, std::uint32_t size);

/// Appends an operation to a list unchanged.
///
/// list       in  the list of the stage that takes the operation
/// operation  in  address of the variable that holds the operation's address
/// The result is not used.
std::uint32_t CVT_CALL SioPutOp(tagOpList* list, void** operation);

/// The error recorded on a list, 0 when none. Reading it changes nothing.
std::int16_t CVT_CALL SioGetOpError(tagOpList* list);
