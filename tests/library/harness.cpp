#include "tests/library/harness.h"

#include <cstring>

namespace cvt::test {

namespace {

template <CvtStatus (*kTwin)(Sibling, tagRasterPacked**, tagIGFD*, tagIGFD*, tagCRLA*), bool kFrom, bool kTo>
CvtStatus Twin(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return kTwin({kFrom, kTo}, band, source, destination, context);
}

std::vector<std::uint8_t> WithoutPointers(tagCRLA record) {
  record.runLengths = nullptr;
  record.values = nullptr;
  record.errorRow = nullptr;
  record.searchTable = nullptr;
  record.next = nullptr;
  record.convertProc = nullptr;
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
  outcome.leftAllocated = world.LeftAllocated();
}

std::string FirstDifferentCall(const std::vector<Entry>& library, const std::vector<Entry>& twin) {
  std::size_t i = 0;
  while (i < library.size() && i < twin.size() && library[i] == twin[i]) ++i;
  if (i == library.size() && i == twin.size()) return "";
  const auto text = [i](const std::vector<Entry>& log) { return i < log.size() ? Describe(log[i]) : "nothing"; };
  return "call " + std::to_string(i + 1) + "\n  library " + text(library) + "\n  twin    " + text(twin) +
         (i > 0 ? "\n  after   " + Describe(twin[i - 1]) : "") + "\n";
}

template <class Item>
std::string FirstDifference(const char* name, const std::vector<Item>& library, const std::vector<Item>& twin) {
  if (library == twin) return "";
  std::string text = std::string(name) + ": " + std::to_string(library.size()) + " against " +
                     std::to_string(twin.size()) + " of them";
  for (std::size_t i = 0; i < library.size() && i < twin.size(); ++i)
    if (library[i] != twin[i]) {
      text += ", first different is number " + std::to_string(i);
      if constexpr (std::is_arithmetic_v<Item>)
        text += ": " + std::to_string(library[i]) + " against " + std::to_string(twin[i]);
      break;
    }
  return text + "\n";
}

}  // namespace

const std::vector<Member> kNearestFamily = {
    {"CvtBitByte", {true, false}, OnPlanes<CvtBitByte>, Twin<RefNearest, true, false>},
    {"CvtByteBit", {false, true}, CvtByteBit, Twin<RefNearest, false, true>},
    {"CvtBitBit", {true, true}, OnPlanes<CvtBitBit>, Twin<RefNearest, true, true>},
    {"CvtByteByte", {false, false}, CvtByteByte, Twin<RefNearest, false, false>}};

const std::vector<Member> kMonoDiffusionFamily = {{"CvtMonochromeDiffusionBitByte",
                                                   {true, false},
                                                   OnPlanes<CvtMonochromeDiffusionBitByte>,
                                                   Twin<RefMonoDiffusion, true, false>},
                                                  {"CvtMonochromeDiffusionByteBit",
                                                   {false, true},
                                                   CvtMonochromeDiffusionByteBit,
                                                   Twin<RefMonoDiffusion, false, true>},
                                                  {"CvtMonochromeDiffusionBitBit",
                                                   {true, true},
                                                   OnPlanes<CvtMonochromeDiffusionBitBit>,
                                                   Twin<RefMonoDiffusion, true, true>},
                                                  {"CvtMonochromeDiffusionByteByte",
                                                   {false, false},
                                                   CvtMonochromeDiffusionByteByte,
                                                   Twin<RefMonoDiffusion, false, false>}};

std::vector<Entry> Outcome::Calls(Call call) const {
  std::vector<Entry> found;
  for (const Entry& entry : log)
    if (entry.call == call) found.push_back(entry);
  return found;
}

void SetUp(World& world, const Case& what, CvtConvertProc convert) {
  world.source = what.source;
  world.destination = what.destination;
  world.context.halftoneMethod = what.halftoneMethod;
  world.context.sameColorMap = what.sameColorMap;
  world.context.invertMono = what.invertMono;
  world.context.grayPalette = what.grayPalette;
  world.context.gammaActive = what.gammaActive;
  world.context.convertProc = convert;
}

int WordAt(const std::vector<std::uint8_t>& block, std::size_t at) {
  if (at >= kBandPrefixBytes + kBandHeaderBytes) return block.at(at) + 256 * block.at(at + 1);
  std::uint16_t word = 0;
  std::memcpy(&word, &block.at(at), sizeof word);
  return word;
}

Outcome RunCase(const Case& what, BandRoutine routine, CvtConvertProc convert) {
  World world(what.script, what.capacity, what.errorRow);
  SetUp(world, what, convert);
  const tagCRLA before = world.context;
  Outcome outcome;
  for (const BandPlan& plan : what.bands) {
    tagRasterPacked* const band = world.MakeBand(plan);
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
         FirstDifference("error row", library.errorRow, twin.errorRow) +
         FirstDifference("run lengths", library.runLengths, twin.runLengths) +
         FirstDifference("values", library.values, twin.values) +
         FirstDifference("context", library.context, twin.context) +
         FirstDifference("left allocated", library.leftAllocated, twin.leftAllocated) +
         (library.callersKept == twin.callersKept ? "" : "the caller's pointers\n");
}

}  // namespace cvt::test
