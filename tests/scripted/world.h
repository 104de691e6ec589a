// A host that follows a script and writes down everything that the library asks of it.
//
// One World is one host: heap, descriptors, context, next stage. Every operation of host.h notes the
// call with the arguments that matter in the log. Blocks appear there as ordinals, so that the logs of
// two runs in two fresh worlds are equal exactly when the runs made the same calls in the same order.
// The world knows nothing of how a conversion works.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "cvt/host.h"
#include "cvt/status.h"

namespace cvt::test {

enum class Call : std::uint8_t {
  Alloc,
  Size,
  Free,
  CreateOp,
  PutOp,
  OpError,
  Dup,
  Dispose,
  Gamma,
  Snap,
  Closest,
  Cube,
  IsGray,
  Assign,
  Execute,
  ReadPlane,
  ReadPacked,
  WritePlane,
  WritePacked,
  PlanePixel,
  PackedPixel,
  Convert,
  Progress
};

struct Entry {
  Call call;
  std::array<std::int64_t, 7> args;
  bool operator==(const Entry&) const = default;
};
std::string Describe(const Entry& entry);

/// How the line readers divide a line into entries. All of them are legal.
enum class Runs : std::uint8_t { PerPixel, Merged, WithEmpty, OneShort };

/// What goes wrong, and what the host's services answer. Counts start at 1; 0 means never.
struct Script {
  Runs runs = Runs::PerPixel;
  std::int32_t failAllocAt = 0;  // SioAllocSMem and SioCreateOp, counted together
  std::int32_t failDupAt = 0;
  std::int32_t stopAt = 0;
  std::int16_t stopAnswer = 1;
  std::int32_t convertFailsAt = 0;
  std::int16_t convertAnswer = -77;
  std::int32_t executeFailsAt = 0;
  std::int16_t executeAnswer = -88;
  std::vector<std::int16_t> listErrors;  // answer of each read of the list's error, 0 when exhausted
  std::int16_t freeAnswer = 0;
  bool replacesBand = false;     // convertProc keeps the band and leaves another block in the slot
  bool scribbles = false;        // convertProc uses the line buffer for its own purposes
  bool changesSettings = false;  // convertProc turns gamma and the kind of search over
  bool watchesErrorRow = false;  // pixel writes and gamma note the whole error row
  std::int32_t black = 0;
  std::int32_t white = 1;
  std::uint16_t cubeHighBits = 0;  // joined to what the cube answers
  std::uint16_t isGray = 0;
};

enum class BlockKind : std::uint8_t { Heap, Band, Copy, CallersBand, CallersHeap };

struct Block {
  std::uint8_t* base;  // of a band: its prefix
  std::uint32_t size;
  std::uint32_t ordinal;
  BlockKind kind;
};

/// A band to convert, with the bytes of its pixels.
struct BandPlan {
  bool planes;
  std::uint16_t left, top, width, lineCount, depth;
  std::vector<std::uint8_t> pixels;
};

inline constexpr std::size_t kPaletteEntries = 65536;
inline constexpr std::size_t kTableBytes = 32768;
inline constexpr std::uint32_t kLargestBlock = 1 << 20;  // the heap is exhausted by anything larger
IRGB* SharedPalette();
std::uint8_t* SharedTable();
tagOpList* SharedList();

std::int16_t CVT_CALL ScriptedProgress(std::uint32_t data);
std::int16_t CVT_CALL ScriptedConvert(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                      tagCRLA* context);

class World {
 public:
  /// capacity: entries of the line buffer; errorRow: initial error row, its size is the row's
  World(const Script& what, std::uint16_t capacity, const std::vector<std::int16_t>& errorRow);
  ~World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  static World& Here();

  tagRasterPacked* MakeBand(const BandPlan& plan);
  void Note(Call call, std::array<std::int64_t, 7> args) { log.push_back({call, args}); }
  std::uint8_t* Take(std::uint32_t size, BlockKind kind);  // null when the heap is exhausted
  bool Release(void* base);
  Block* Holding(const void* inside);             // the live block that an address lies in, or null
  std::int64_t Identify(const void* what) const;  // ordinal of a block, a negative name, 0 for null
  std::vector<std::uint8_t> BytesOf(const void* band);
  std::int64_t ErrorRowHash() const;
  std::vector<std::string> LeftAllocated() const;  // none of them the caller's
  std::vector<std::vector<std::uint8_t>> CallersHeap() const;

  Script script;
  std::vector<Entry> log;
  std::vector<std::vector<std::uint8_t>> handedOn;  // each band that left: prefix, header and pixels
  tagIGFD source{}, destination{};
  tagCRLA context{};
  std::vector<std::uint16_t> runLengths;
  std::vector<std::uint32_t> values;
  std::vector<std::int16_t> errors;
  tagStage stage{};
  tagStage* stageSlot;
  tagRasterPacked* nextBand = nullptr;
  execute next{};
  std::int32_t allocs = 0, dups = 0, stops = 0, converts = 0, executes = 0;
  std::size_t listReads = 0;

 private:
  std::vector<Block> InOrder() const;

  std::map<const void*, Block> live_;  // by base
  std::uint32_t ordinals_ = 0;
};

std::int64_t Hash(const void* data, std::size_t bytes, std::uint64_t seed = 0);

}  // namespace cvt::test
