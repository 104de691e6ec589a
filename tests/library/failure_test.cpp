// Whatever fails, once each: every block that a routine takes, every band that the next link refuses, every
// question whether to go on. The status, and exactly which blocks stay, are those of failure_rules.h.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include "tests/library/failure_rules.h"
#include "tests/library/scale_cases.h"

namespace cvt::test {

namespace {

struct Routine {
  std::string name;
  bool planes;
  BandRoutine run;
};

std::vector<std::string> Words(const char* text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

// ---- The routines by their names ----

template <auto kOpen, auto kClose, class Band>
CvtStatus OpenAndClose(tagRasterPacked** band, tagIGFD*, tagIGFD*, tagCRLA*) {
  auto* cursor = kOpen(reinterpret_cast<Band*>(*band));
  if (cursor == nullptr) return kCvtNoMemory;
  kClose(cursor);
  return kCvtOk;
}

CvtStatus CreateAndDestroy(tagRasterPacked**, tagIGFD*, tagIGFD*, tagCRLA*) {
  tagCRLA* made = nullptr;
  if (const CvtStatus status = CvtCreateCRLA(&made, 4); status != kCvtOk) return status;
  made->errorRow = nullptr;
  made->ownedBuffer1 = made->ownedBuffer2 = nullptr;
  return CvtDestroyCRLA(made);
}

std::vector<Routine> AllRoutines() {
  constexpr auto kPlanes = OpenAndClose<CvtOpenPlanePixel, CvtClosePlanePixel, tagRasterPlane>;
  constexpr auto kPacked = OpenAndClose<CvtOpenPackedPixel, CvtClosePackedPixel, tagRasterPacked>;
  std::vector<Routine> all = {{"Cvtr2r", false, Cvtr2r},
                              {"Cvt1Bit1Byte", false, Cvt1Bit1Byte},
                              {"CvtOpenPlanePixel", true, kPlanes},
                              {"CvtClosePlanePixel", true, kPlanes},
                              {"CvtOpenPackedPixel", false, kPacked},
                              {"CvtClosePackedPixel", false, kPacked},
                              {"CvtCreateCRLA", false, CreateAndDestroy},
                              {"CvtDestroyCRLA", false, CreateAndDestroy}};
  for (const auto* family : {&kNearestFamily, &kMonoDiffusionFamily})
    for (const Member& m : *family) all.push_back({m.name, m.which.fromPlanes, m.library});
  for (const ColorMember& m : kColorMembers) all.push_back({m.name, m.which.fromPlanes, m.library});
  for (const auto* scalers : {&kScaleWorkers, &kSmoothWorkers})
    for (const Scaler& s : *scalers) all.push_back({s.name, s.name.ends_with("Bit"), s.library});
  for (const bool planes : {false, true})
    for (const Scaler& s : kScaleDrivers) all.push_back({s.name, planes, s.library});
  return all;
}

// ---- One run ----

// What bands leave for the next in the context.
using State = std::array<std::uint32_t, 7>;
State StateOf(const tagCRLA& c) {
  return {c.mergeLeft,  c.nextSourceLine,     c.upSourceLine,    c.upOutputLine,
          c.mergeWidth, c.smoothOutputRemain, c.scaleAccumulator};
}

std::int16_t CVT_CALL WatchingLink(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                   tagCRLA* context) {
  *static_cast<State*>(context->core) = StateOf(*context);
  return ScriptedConvert(band, source, destination, context);
}

Case CaseOf(const Images& i, bool planes) {
  Case what = PlainCase(planes, i.depth, i.toDepth, i.width, i.lines, 0x5C);
  what.source.imageWidth = what.source.clipX1 = static_cast<std::int16_t>(i.width);
  what.source.imageHeight = i.height;
  what.source.clipX0 = i.clipX0;
  what.source.clipY1 = static_cast<std::int16_t>(i.lines);
  what.source.options = i.chain ? kClipOption : std::uint16_t{0};
  what.destination.imageWidth = i.toWidth;
  what.destination.imageHeight = i.toHeight;
  what.destination.colorFlags = i.direct ? 0 : kIndexedColor;
  what.halftoneMethod = i.method;
  what.scaleDownMethod = i.decimates ? kDecimate : std::uint8_t{0};
  what.bandLimit = i.bandLimit;
  return what;
}

// Lines, tables and buffers as large as any routine wants them.
void Furnish(World& world, const Images& i) {
  FurnishForScaling(world, i.width, static_cast<std::size_t>(std::max<std::int32_t>(i.width, i.toWidth)));
  static std::uint8_t matrix[64], steps[2048];
  tagCRLA& context = world.context;
  context.ditherMatrix = matrix;
  context.ditherSteps = steps;
  context.ditherWidth = context.ditherHeight = 8;
  world.script.isGray = i.isGray ? 256 : 0;
}

Call TakenBy(char letter) {
  if (std::strchr("cCkK", letter) != nullptr) return Call::Dup;
  return std::strchr("bBsSpP", letter) != nullptr ? Call::CreateOp : Call::Alloc;
}

// The letters of the blocks that the calls of a run took and did not give back; then its faults.
std::string Held(const World& world, const char* due) {
  std::map<std::int64_t, char> held;
  std::string faults, letters;
  std::int64_t handedOn = 0;
  for (const Entry& e : world.log) {
    if (e.call == Call::Convert) handedOn = e.args[0];
    if (e.call == Call::Dup || e.call == Call::CreateOp || e.call == Call::Alloc) {
      if (*due == 0 || TakenBy(*due) != e.call) return "takes a block that is not due: " + Describe(e);
      const std::int64_t block = e.args[e.call == Call::CreateOp ? 2 : 1];
      if (block != 0) held[block] = *due;
      ++due;
    }
    if (e.call != Call::Free && e.call != Call::Dispose) continue;
    const bool replaced = world.script.replacesBand && e.args[1] == static_cast<std::int64_t>(BlockKind::Band) &&
                          !held.contains(e.args[0]);
    if (held.erase(replaced ? handedOn : e.args[0]) == 0) faults += ", gives back what it does not hold";
  }
  for (const auto& [block, letter] : held) letters += letter;
  return (letters.empty() ? "-" : letters) + faults;
}

// "status blocks", and what no routine may do.
std::string Run(const Routine& routine, const Row& row, const Script& script) {
  const Case what = CaseOf(row.images, routine.planes);
  World world(script, row.images.width, std::vector<std::int16_t>(std::size_t{3} * row.images.width));
  SetUp(world, what, row.images.chain ? Cvtr2r : WatchingLink);
  Furnish(world, row.images);
  tagRasterPacked* const band = world.MakeBand(what.bands[0]);
  tagRasterPacked* slot = band;
  State state = StateOf(world.context);
  world.context.core = &state;

  const CvtStatus status = routine.run(&slot, &world.source, &world.destination, &world.context);
  std::string seen = std::to_string(status) + " " + Held(world, row.rule.takes);
  if (slot != band) seen += ", changes the caller's band pointer";
  if (std::memcmp(&what.source, &world.source, sizeof what.source) != 0 ||
      std::memcmp(&what.destination, &world.destination, sizeof what.destination) != 0)
    seen += ", changes the caller's descriptors";
  if (status != kCvtOk && !row.rule.finishedPartsMoveOn && state != StateOf(world.context))
    seen += ", changes the scaling state all the same";
  return seen;
}

// ---- The sweep ----

// What can fail, and where the rules say what stays.
struct Kind {
  const char* name;
  const char* Rule::*list;
};
constexpr Kind kBlock = {"block", &Rule::lacking}, kNextLink = {"band", &Rule::refused},
               kQuestion = {"question", &Rule::stopped};

Script ScriptOf(const Rule& rule, const Kind& kind, std::size_t number, bool odd) {
  Script script;
  const auto n = static_cast<std::int32_t>(number);
  script.convertAnswer = script.executeAnswer = script.stopAnswer = odd ? 256 : -77;
  script.replacesBand = odd && std::strpbrk(rule.takes, "bp") != nullptr;  // never the caller's
  if (&kind == &kNextLink) script.convertFailsAt = script.executeFailsAt = n;
  if (&kind == &kQuestion) script.stopAt = n;
  if (&kind != &kBlock || number > std::strlen(rule.takes)) return script;
  std::int32_t copies = 0;
  for (std::size_t k = 0; k < number; ++k) copies += TakenBy(rule.takes[k]) == Call::Dup ? 1 : 0;
  if (TakenBy(rule.takes[number - 1]) == Call::Dup)
    script.failDupAt = copies;
  else
    script.failAllocAt = n - copies;
  return script;
}

std::string Expected(const Rule& rule, const Kind& kind, std::size_t number, const Script& script) {
  const std::vector<std::string> words = Words(rule.*kind.list);
  if (number > words.size()) return "0 -";
  const std::string& word = words[number - 1];
  if (const std::size_t colon = word.find(':'); colon != word.npos)
    return word.substr(0, colon) + " " + word.substr(colon + 1);
  int status = &kind == &kNextLink ? script.convertAnswer : kCvtStopped;
  if (&kind == &kBlock) status = TakenBy(rule.takes[number - 1]) == Call::Dup ? kCvtNoDescriptor : kCvtNoMemory;
  return std::to_string(status) + " " + word;
}

void Sweep(const Routine& routine, const Row& row) {
  for (const Kind* kind : {&kBlock, &kNextLink, &kQuestion})
    for (std::size_t n = 1; n <= Words(row.rule.*kind->list).size() + 1; ++n)
      for (const bool odd : {false, true}) {
        const Script script = ScriptOf(row.rule, *kind, n, odd);
        EXPECT_EQ(Run(routine, row, script), Expected(row.rule, *kind, n, script))
            << routine.name << (routine.planes ? ", planes, " : ", packed, ") << kind->name << " " << n
            << (script.replacesBand ? ", bands replaced" : "");
      }
}

TEST(Failures, LeaveExactlyWhatTheRulesSay) {
  const std::vector<Routine> routines = AllRoutines();
  for (const Row& row : kRows)
    for (const std::string& name : Words(row.routines)) {
      ASSERT_EQ(Words(row.rule.lacking).size(), std::strlen(row.rule.takes)) << name;
      std::size_t swept = 0;
      for (const Routine& routine : routines)
        if (routine.name == name) Sweep(routine, row), ++swept;
      EXPECT_GT(swept, 0U) << name;
    }
}

TEST(Failures, AreSweptForEveryExport) {
  std::set<std::string> known;
  for (const std::string& name : Words(kTakeNothing)) known.insert(name);
  for (const Row& row : kRows)
    for (const std::string& name : Words(row.routines)) known.insert(name);
  std::ifstream header(CVTR2R_EXPORTS);
  const std::string text{std::istreambuf_iterator<char>(header), {}};
  const std::string mark = "CVT_CALL Cvt";
  std::set<std::string> exported;
  for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + 1)) {
    const std::size_t name = at + mark.size() - 3;
    exported.insert(text.substr(name, text.find('(', name) - name));
  }
  EXPECT_EQ(known, exported);
}

}  // namespace

}  // namespace cvt::test
