// Conversions that end badly on the way: nothing is left, what was there stays.
#include <gtest/gtest.h>

#include "run.h"

namespace cvt::app::test {
namespace {

using Names = std::vector<std::string>;

// Ten thousand pixels of noise, too much for one block however they are packed.
std::string Noise() {
  std::string file = "P5\n100 100\n255\n";
  unsigned seed = 1;
  for (int i = 0; i < 10000; ++i) {
    seed = seed * 1103515245U + 12345U;
    file += static_cast<char>(seed >> 16 & 255);
  }
  return file;
}

TEST(Ending, AFileThatCannotGrowIsRemoved) {
  for (const char* output : {"o.png", "o.pgm"}) {
    const Workplace place;
    place.Write("in", Noise());
    // The limit holds for the messages of the shell as well; they are far shorter than a block.
    const Ended ended = place.Shell(std::string("ulimit -f 1; \"$R2R\" convert in ") + output);
    EXPECT_EQ(ended.status, 5) << ended.err;
    EXPECT_TRUE(ended.err.starts_with(std::string("r2r: ") + output + ": ")) << ended.err;
    EXPECT_EQ(place.Names(), Names{"in"});
  }
}

TEST(Ending, AnInputThatEndsEarlyKeepsTheOldOutput) {
  const Workplace place;
  place.Write("in", Noise().substr(0, 5000));
  place.Write("o.png", "old");
  EXPECT_EQ(place.Convert("--force in o.png").status, 3);
  EXPECT_EQ(place.Read("o.png"), "old");
  EXPECT_EQ(place.Names(), (Names{"in", "o.png"}));
}

TEST(Ending, AReaderThatLeavesIsAWriteError) {
  const Workplace place;
  std::string rows;
  for (int i = 0; i < 100; ++i) rows += Noise().substr(15);
  place.Write("in", "P5\n100 10000\n255\n" + rows);
  const Ended ended = place.Shell(
      "{ \"$R2R\" convert in - --format pgm; echo $? >$ASIDE/status; } | head -c 1 >/dev/null; "
      "exit $(cat $ASIDE/status)");
  EXPECT_EQ(ended.status, 5) << ended.err;
}

// The input stays open without ending, so the command waits for more when the signal comes: as soon as it has
// its unfinished file, a nameless one where the system has such files. Nothing can clean up after SIGKILL.
TEST(Ending, AKilledConversionLeavesNothing) {
  for (const char* signal : {"INT", "TERM", "HUP", "KILL"}) {
    const Workplace place;
    place.Write("in", Noise().substr(0, 5000));
    // In the foreground, for a shell makes its background jobs deaf to SIGINT.
    const Ended ended = place.Shell(
        "mkfifo pipe; exec 3<>pipe; cat in >&3\n"
        "{ until ls -l /proc/$(cat $ASIDE/job)/fd 2>&1 | grep -q 'deleted\\|part'; do sleep 0.01; done; kill -" +
        std::string(signal) +
        " $(cat $ASIDE/job); } &\n"
        "export R2R ASIDE; sh -c 'echo $$ >$ASIDE/job; exec \"$R2R\" convert - o.pgm <pipe'; status=$?; wait; "
        "(exit $status)");
    const bool killed = signal == std::string("KILL");
    EXPECT_EQ(ended.status, killed ? 137 : 130) << signal << ": " << ended.err;
    if (killed && place.Names().front().ends_with(".part")) GTEST_SKIP() << "no nameless files here";
    EXPECT_EQ(place.Names(), (Names{"in", "pipe"})) << signal;
  }
}

}  // namespace
}  // namespace cvt::app::test
