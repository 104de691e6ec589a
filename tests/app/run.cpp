#include "run.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

namespace cvt::app::test {

Ended Workplace::Shell(const std::string& line) const {
  const std::string command = "cd '" + path.string() + "' && R2R='" R2R_BINARY "' ASIDE='" + aside.path.string() +
                              "' && { " + line + "\n} >\"$ASIDE\"/out 2>\"$ASIDE\"/err </dev/null";
  const int ended = std::system(command.c_str());
  return {WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, aside.Read("out"), aside.Read("err")};
}

void ExpectFile(const Workplace& place, const Case& c) {
  SCOPED_TRACE(c.what);
  place.Write("in", c.input);
  const std::vector<std::string> before = place.Names();
  const Ended ended = place.Convert(c.options + " in " + c.output);
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.out + ended.err, "");
  EXPECT_EQ(place.Read(c.output), c.file);
  std::filesystem::remove(place.path / c.output);
  EXPECT_EQ(place.Names(), before);
}

}  // namespace cvt::app::test
