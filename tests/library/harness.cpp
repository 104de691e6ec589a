#include "tests/library/harness.h"

#include <algorithm>
#include <cstring>

#include "tests/scripted/prefix.h"

namespace cvt::test {

namespace {

std::vector<std::uint8_t> WithoutPointers(tagCRLA record) {
  record.runLengths = nullptr;
  record.values = nullptr;
  record.errorRow = nullptr;
  record.searchTable = nullptr;
  record.next = nullptr;
  record.convertProc = nullptr;
  record.ownedBuffer1 = record.ownedBuffer2 = nullptr;
  record.smoothCurrentLine = record.smoothSums = nullptr;
  std::vector<std::uint8_t> bytes(sizeof record);
  std::memcpy(bytes.data(), &record, sizeof record);
  return bytes;
}

bool SamePointers(const tagCRLA& a, const tagCRLA& b) {
  return a.runLengths == b.runLengths && a.values == b.values && a.errorRow == b.errorRow &&
         a.searchTable == b.searchTable && a.next == b.next && a.convertProc == b.convertProc;
}

void Collect(World& world, Outcome& outcome) {
  outcome.log = std::move(world.log);
  outcome.handedOn = std::move(world.handedOn);
  outcome.errorRow = world.errors;
  outcome.runLengths = world.runLengths;
  outcome.values = world.values;
  outcome.context = WithoutPointers(world.context);
  outcome.buffers = world.CallersHeap();
  outcome.leftAllocated = world.LeftAllocated();
}

std::string FirstDifferentCall(const std::vector<Entry>& library, const std::vector<Entry>& twin) {
  if (library == twin) return "";
  std::size_t i = 0;
  while (i < library.size() && i < twin.size() && library[i] == twin[i]) ++i;
  const auto text = [i](const std::vector<Entry>& log) { return i < log.size() ? Describe(log[i]) : "nothing"; };
  return "call " + std::to_string(i + 1) + "\n  library " + text(library) + "\n  twin    " + text(twin) +
         (i > 0 ? "\n  after   " + Describe(twin[i - 1]) : "") + "\n";
}

template <class Item>
std::string FirstDifference(const char* name, const std::vector<Item>& library, const std::vector<Item>& twin) {
  if (library == twin) return "";
  const auto at = std::mismatch(library.begin(), library.end(), twin.begin(), twin.end()).first - library.begin();
  return std::string(name) + ": " + std::to_string(library.size()) + " against " + std::to_string(twin.size()) +
         " of them, first different is number " + std::to_string(at) + "\n";
}

}  // namespace

const std::vector<Member> kNearestFamily =
    FamilyOf<RefNearest, CvtBitByte, CvtByteBit, CvtBitBit, CvtByteByte>("Cvt");
const std::vector<Member> kMonoDiffusionFamily =
    FamilyOf<RefMonoDiffusion, CvtMonochromeDiffusionBitByte, CvtMonochromeDiffusionByteBit,
             CvtMonochromeDiffusionBitBit, CvtMonochromeDiffusionByteByte>("CvtMonochromeDiffusion");

std::vector<Entry> Outcome::Calls(Call call) const {
  std::vector<Entry> found;
  for (const Entry& entry : log)
    if (entry.call == call) found.push_back(entry);
  return found;
}

std::vector<int> Outcome::Args(Call call, std::size_t which) const {
  std::vector<int> found;
  for (const Entry& entry : Calls(call)) found.push_back(static_cast<int>(entry.args[which]));
  return found;
}

std::string Outcome::Pieces() const {
  std::string text;
  for (const auto& block : handedOn)
    text += (text.empty() ? "" : " ") + std::to_string(WordAt(block, 6)) + "+" + std::to_string(WordAt(block, 10));
  return text;
}

void SetUp(World& world, const Case& what, CvtConvertProc convert) {
  world.source = what.source;
  world.destination = what.destination;
  world.context.halftoneMethod = what.halftoneMethod;
  world.context.sameColorMap = what.sameColorMap;
  world.context.invertMono = what.invertMono;
  world.context.grayPalette = what.grayPalette;
  world.context.gammaActive = what.gammaActive;
  world.context.scaleDownMethod = what.scaleDownMethod;
  world.context.scaleAccumulator = what.accumulator;
  world.context.convertProc = convert;
  world.stage.bandLimit = what.bandLimit;
}

void FurnishForScaling(World& world, std::size_t entries, std::size_t pixels) {
  const auto block = [&world](std::size_t bytes) -> void* {
    return world.Take(static_cast<std::uint32_t>(bytes), BlockKind::CallersHeap);
  };
  tagCRLA& context = world.context;
  context.runLengths = static_cast<std::uint16_t*>(block(2 * entries));
  context.values = static_cast<std::uint32_t*>(block(4 * entries));
  context.ownedBuffer1 = std::memset(block(2 * entries), 0, 2 * entries);
  context.ownedBuffer2 = std::memset(block(4 * pixels), 0, 4 * pixels);
  context.smoothCurrentLine = static_cast<std::uint32_t*>(block(4 * pixels));
  context.smoothSums = static_cast<std::uint32_t*>(block(12 * pixels));
}

int WordAt(const std::vector<std::uint8_t>& block, std::size_t at) {
  if (at >= kBandPrefixBytes + kBandHeaderBytes) return block.at(at) + 256 * block.at(at + 1);
  std::uint16_t word = 0;
  std::memcpy(&word, &block.at(at), sizeof word);
  return word;
}

Outcome RunCase(const Case& what, BandRoutine routine, CvtConvertProc convert, const Furnish& furnish) {
  World world(what.script, what.capacity, what.errorRow);
  SetUp(world, what, convert);
  if (furnish) furnish(world);
  const tagCRLA before = world.context;
  Outcome outcome;
  for (const BandPlan& plan : what.bands) {
    tagRasterPacked* const band = world.MakeBand(plan);
    if (what.operationCode != 0) SetPrefix(band, {what.operationCode, PrefixOf(band).size});
    tagRasterPacked* slot = band;
    outcome.statuses.push_back(routine(&slot, &world.source, &world.destination, &world.context));
    outcome.inputs.push_back(world.BytesOf(band));
    if (outcome.inputs.back().empty()) outcome.callersKept = false;  // somebody released the caller's band
    if (slot != band || !SamePointers(before, world.context)) outcome.callersKept = false;
    if (outcome.statuses.back() != kCvtOk) break;
  }
  Collect(world, outcome);
  return outcome;
}

std::string Difference(const Outcome& library, const Outcome& twin) {
  if (library == twin) return "";
  return FirstDifferentCall(library.log, twin.log) + FirstDifference("statuses", library.statuses, twin.statuses) +
         FirstDifference("bands handed on", library.handedOn, twin.handedOn) +
         FirstDifference("input bands", library.inputs, twin.inputs) +
         FirstDifference("buffers", library.buffers, twin.buffers) +
         FirstDifference("error row", library.errorRow, twin.errorRow) +
         FirstDifference("run lengths", library.runLengths, twin.runLengths) +
         FirstDifference("values", library.values, twin.values) +
         FirstDifference("context", library.context, twin.context) +
         FirstDifference("left allocated", library.leftAllocated, twin.leftAllocated) +
         (library.callersKept == twin.callersKept ? "" : "the caller's pointers\n");
}

}  // namespace cvt::test
