// Making the tables and buffers of a conversion.

#include "host/conversion_tables.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "host/dither_tables.h"
#include "host/matrices.h"
#include "host/state.h"
#include "host/uniform_cube.h"

namespace cvt::host {
namespace {

void* AllocZeroed(std::size_t bytes) {
  void* block = SioAllocSMem(static_cast<std::uint32_t>(bytes));
  if (block != nullptr) std::memset(block, 0, bytes);
  return block;
}

// ---- Ordered dither ----

constexpr std::uint8_t kDefaultSide = 8;  // of the matrix that a set-up without one gets

bool WantsOrderedDither(const ConversionSetup& setup) {
  return IsIndexed(setup.destination) && setup.halftoneMethod != kNearest && setup.halftoneMethod != kDiffusion;
}

bool AddMatrix(tagCRLA* context, const ConversionSetup& setup) {
  const bool given = setup.ditherMatrix != nullptr;
  context->ditherWidth = given ? setup.ditherWidth : kDefaultSide;
  context->ditherHeight = given ? setup.ditherHeight : kDefaultSide;
  const std::size_t places = std::size_t{context->ditherWidth} * context->ditherHeight;
  auto* matrix = static_cast<std::uint8_t*>(AllocZeroed(places));
  if (matrix == nullptr) return false;
  if (given)
    std::memcpy(matrix, setup.ditherMatrix, places);
  else
    FillBayer(kDefaultSide, matrix);
  StateOf(context)->ditherMatrix = matrix;
  context->ditherMatrix = matrix;
  return true;
}

bool AddSteps(tagCRLA* context, Palette destination) {
  const std::size_t perEntry = AllGray(destination) ? kGraySteps : kColorSteps;
  auto* steps = static_cast<std::uint8_t*>(AllocZeroed(perEntry * destination.count));
  if (steps == nullptr) return false;
  BuildDitherSteps(destination, steps);
  StateOf(context)->ditherSteps = steps;
  context->ditherSteps = steps;
  return true;
}

// The entries of a palette that is a cube stand in the order of the table's cells: cell i is entry i.
bool AddCubeTable(tagCRLA* context, const ConversionSetup& setup) {
  const std::uint32_t levels = CubeLevels(setup.destination->bitsPerPixel);
  if (!StartsWithCube(PaletteOf(setup.destination), levels)) return true;
  const std::size_t cells = std::size_t{levels} * levels * levels;
  auto* table = static_cast<std::uint8_t*>(AllocZeroed(cells));
  if (table == nullptr) return false;
  std::iota(table, table + cells, std::uint8_t{0});
  BoundThresholds(levels, context->ditherMatrix, std::size_t{context->ditherWidth} * context->ditherHeight);
  StateOf(context)->cubeTable = table;
  context->cubeTable = table;
  return true;
}

}  // namespace

bool MayScale(const ConversionSetup& setup) {
  const tagIGFD* from = setup.source;
  const tagIGFD* to = setup.destination;
  return (from->options & kClipOption) != 0 || from->imageWidth != to->imageWidth ||
         from->imageHeight != to->imageHeight || from->originX != to->originX || from->originY != to->originY;
}

// Three entries for every column, and a few to spare for a routine that looks one pixel further.
bool AddErrorRow(tagCRLA* context, const ConversionSetup& setup) {
  constexpr std::size_t kSpareColumns = 4;
  const std::size_t entries = 3 * (setup.lineCapacity + kSpareColumns);
  context->errorRow = static_cast<std::int16_t*>(AllocZeroed(entries * sizeof(std::int16_t)));
  return context->errorRow != nullptr;
}

// A direct-colour destination is not searched and has no tables.
bool AddSearchTables(tagCRLA* context, const ConversionSetup& setup) {
  if (!IsIndexed(setup.destination)) return true;
  HostState* state = StateOf(context);
  const Palette destination = PaletteOf(setup.destination);
  const MonoRule rule{setup.threshold, setup.invertMono};
  const bool gray = AllGray(destination);
  const std::size_t tableBytes = gray ? kGrayLevels : kCubeCells;
  auto* table = static_cast<std::uint8_t*>(SioAllocSMem(static_cast<std::uint32_t>(tableBytes)));
  if (table == nullptr) return false;
  if (gray)
    BuildGrayTable(destination, rule, table);
  else
    BuildCube(destination, rule, table);
  if (IsIndexed(setup.source)) BuildSnapMap(PaletteOf(setup.source), destination, rule, state->snapMap);
  state->searchTable = table;
  context->searchTable = table;
  context->grayPalette = gray ? kGrayRamp : 0;
  return true;
}

bool AddDitherTables(tagCRLA* context, const ConversionSetup& setup) {
  if (!WantsOrderedDither(setup)) return true;
  return AddMatrix(context, setup) && AddSteps(context, PaletteOf(setup.destination)) &&
         AddCubeTable(context, setup);
}

// Enlarging copies whole run arrays into the owned buffers, by the arrays' usable sizes.
bool AddScalingLines(tagCRLA* context, const ConversionSetup& setup) {
  if (!MayScale(setup)) return true;
  const std::size_t columns = setup.lineCapacity;
  context->ownedBuffer1 = AllocZeroed(SioSizeSMem(context->runLengths));
  context->ownedBuffer2 = AllocZeroed(SioSizeSMem(context->values));
  // Merged lines take what differs from the line above: the first one from the paper. Averages need zeros.
  if (context->ownedBuffer2 != nullptr && setup.paperValue != 0)
    std::fill_n(static_cast<std::uint32_t*>(context->ownedBuffer2), columns, setup.paperValue);
  HostState* state = StateOf(context);
  state->smoothLine = static_cast<std::uint32_t*>(AllocZeroed(columns * sizeof(std::uint32_t)));
  state->smoothSums = static_cast<std::uint32_t*>(AllocZeroed(3 * columns * sizeof(std::uint32_t)));
  context->smoothCurrentLine = state->smoothLine;
  context->smoothSums = state->smoothSums;
  return context->ownedBuffer1 != nullptr && context->ownedBuffer2 != nullptr && state->smoothLine != nullptr &&
         state->smoothSums != nullptr;
}

}  // namespace cvt::host
