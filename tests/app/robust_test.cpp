// What surroundings do to the command: closed streams, pipes, little memory, full disks, odd names, signals.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "run.h"

namespace cvt::app::test {
namespace {

const std::string kPicture = "P5 2 2 255 abcd";

struct Try {
  const char* words;  // behind r2r
  int status;
  const char* says;  // where the status is 0 on standard output, else on standard error
};

template <std::size_t kCount>
void ExpectAll(const Workplace& place, const Try (&tries)[kCount]) {
  for (const Try& t : tries) {
    const Ended ended = place.Shell(std::string("\"$R2R\" ") + t.words);
    EXPECT_EQ(ended.status, t.status) << t.words << ": " << ended.err;
    const std::string& text = t.status == 0 ? ended.out : ended.err;
    EXPECT_NE(text.find(t.says), std::string::npos) << t.words << ": " << text;
  }
}

std::size_t WholeLines(const std::string& report) {
  std::istringstream text(report);
  std::size_t lines = 0;
  for (std::string line; std::getline(text, line);) lines += nlohmann::json::accept(line) ? 1U : 0U;
  return lines;
}

TEST(Robust, ClosedStreamsAreNoFiles) {
  const Workplace place;
  place.Write("p.pgm", kPicture);
  constexpr Try kTries[] = {{"convert --explain p.pgm o.raw <&- 2>&-", 0, ""},
                            {"convert - o.pgm <&-", 3, "r2r: standard input: reading failed"},
                            {"convert --files-from - --out-dir d <&-", 3, "r2r: standard input: "},
                            {"convert p.pgm - --format pgm >&-", 5, "r2r: standard output: writing failed"},
                            {"convert p.pgm /dev/stdout --format pgm --force >&-", 5, "r2r: /dev/stdout: "},
                            {"convert p.pgm q.pgm --report - >&-", 5, "r2r: standard output: "},
                            {"info p.pgm >&-", 5, "r2r: standard output: "}};
  ExpectAll(place, kTries);
  EXPECT_EQ(place.Read("o.raw"), "abcd");
  EXPECT_EQ(place.Names(), (std::vector<std::string>{"o.raw", "p.pgm"}));
}

TEST(Robust, InfoReadsAPipeOnceAndTellsWhatIsLost) {
  const Workplace place;
  place.Write("p.pgm", kPicture);
  place.Write("words", std::string("P5 1 1 65535 ab"));
  place.Write("alpha", "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 2\nMAXVAL 255\nENDHDR\nab");
  const Ended piped = place.Shell("cat p.pgm | \"$R2R\" info /dev/stdin");
  EXPECT_EQ(piped.err, "");
  EXPECT_EQ(piped.out, "/dev/stdin: PGM, 2 x 2 pixels, 8 bits packed, 256 grays, resolution not told\n");
  constexpr Try kTries[] = {{"info words", 0, "256 grays, samples of 16 bits (read as 8), resolution"},
                            {"info alpha", 0, "256 grays, with transparency, resolution"}};
  ExpectAll(place, kTries);
}

TEST(Robust, WorkersThatFindNoRoomAreDoneWithout) {
  const Workplace place;
  if (place.Shell("ulimit -v 400000; \"$R2R\" --version").status != 0) GTEST_SKIP() << "needs more in itself";
  for (int i = 0; i < 100; ++i) place.Write("a" + std::to_string(i) + ".pgm", kPicture);
  const Ended ended = place.Shell("ulimit -v 400000; \"$R2R\" convert *.pgm --out-dir d -j 256 --report r");
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(WholeLines(place.Read("r")), 100U);
}

TEST(Robust, AReportHasWholeLinesOnly) {
  const Workplace place;
  for (int i = 0; i < 30; ++i) place.Write("a" + std::to_string(i) + ".pgm", kPicture);
  EXPECT_EQ(place.Shell("ulimit -f 1; \"$R2R\" convert *.pgm --out-dir d --report r").status, 5);
  const std::string cut = place.Read("r");
  EXPECT_GT(WholeLines(cut), 0U);
  EXPECT_TRUE(cut.ends_with("}\n")) << cut;
  place.Write("r", cut + "{\"half\":");
  EXPECT_EQ(place.Convert("*.pgm --out-dir d --report r --skip-existing").status, 0);
  EXPECT_EQ(WholeLines(place.Read("r")), WholeLines(cut) + 30);
  EXPECT_EQ(place.Convert("a1.pgm --out-dir new --report new/r").status, 0);
  EXPECT_EQ(WholeLines(place.Read("new/r")), 1U);
}

// Each output that is there when a signal has ended the program has its line, whatever it was about to do.
TEST(Robust, AnInterruptedBatchHasReportedWhatIsDone) {
  for (int round = 1; round <= 12; ++round) {
    const Workplace place;
    for (int i = 0; i < 300; ++i) place.Write("a" + std::to_string(i) + ".pgm", kPicture);
    place.Shell("timeout -s INT 0.0" + std::to_string(1 + round / 2) +
                " \"$R2R\" convert *.pgm --out-dir d -j 4 " + "--report r");
    const std::size_t outputs = std::stoul(place.Shell("mkdir -p d; ls d | wc -l").out);
    EXPECT_EQ(WholeLines(place.Read("r")), outputs) << round;
  }
}

TEST(Robust, OddNamesAreOperands) {
  const Workplace place;
  for (const char* name : {"p.pgm", "-dash.pgm", "-9", "-"}) place.Write(name, kPicture);
  constexpr Try kTries[] = {{"convert --out-dir d -- -dash.pgm -9 p.pgm", 0, ""},
                            {"convert --format pgm -- -9 -o.pgm", 0, ""},
                            {"info -- -9", 0, "-9: PGM, "},
                            {"convert p.pgm -- o.pgm --force", 2, "r2r: --force: one operand too many"},
                            {"convert p.pgm -9", 2, "r2r: -9: there is no such option"},
                            {"convert p.pgm o.pgm --report -- x", 2, "r2r: --report: its value is missing ("},
                            {"convert - o.png --palette adaptive <p.pgm", 2, "adaptive reads the image twice"}};
  ExpectAll(place, kTries);
  for (const char* output : {"d/-9.png", "d/-dash.pgm", "d/p.pgm", "-o.pgm"}) EXPECT_NE(place.Read(output), "");
}

TEST(Robust, NamesOfArraysAreNoWordsOfC) {
  const Workplace place;
  place.Write("p.pgm", kPicture);
  for (const char* name :
       {"linux", "unix", "i386", "SIZE", "Wchar", "uintptr_t", "INT8_MAX", "int_fast8", "int"}) {
    const std::string file = std::string(name) + ".c";
    ASSERT_EQ(place.Convert("p.pgm " + file).status, 0);
    EXPECT_NE(place.Read(file).find(std::string("const uint8_t image_") + name + "[]"), std::string::npos) << name;
  }
  ASSERT_EQ(place.Convert("p.pgm size_chart.c").status, 0);
  EXPECT_NE(place.Read("size_chart.c").find("const uint8_t size_chart[]"), std::string::npos);
}

TEST(Robust, MessagesTellWhatHelps) {
  const Workplace place;
  place.Write("color", "P6 1 1 255 abc");
  place.Write("huge", "P5 99999999999999999999 1 255 ");
  constexpr Try kTries[] = {
      {"convert color o.png --depth 1 --depth 2", 2, "r2r: --depth: it is given twice (give it once)\n"},
      {"convert color o.png --depth", 2, "r2r: --depth: its value is missing (give "},
      {"convert color o.png --size 70000x5", 2, "from 1 to 65535"},
      {"info huge", 4, "more than 1000000 pixels wide ("},
      {"convert color o.pgm --depth 24", 2, "(choose --depth 8 --palette gray, "},
      {"convert color o.pgm --depth 8 --palette gray", 0, ""}};
  ExpectAll(place, kTries);
}

}  // namespace
}  // namespace cvt::app::test
