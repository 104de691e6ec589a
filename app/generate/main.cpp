// Writes one of the texts about the tool to standard output; used while building.

#include <cstdio>
#include <string_view>

#include "app/generate/generate.h"

int main(int count, char** words) {
  const std::string_view what = count == 2 ? words[1] : "";
  std::string text;
  if (what == "man") text = cvt::app::ManPage(CVTR2R_VERSION);
  if (what == "bash") text = cvt::app::BashCompletion();
  if (what == "zsh") text = cvt::app::ZshCompletion();
  if (what == "fish") text = cvt::app::FishCompletion();
  if (text.empty()) {
    std::fputs("usage: r2r_generate man|bash|zsh|fish\n", stderr);
    return 2;
  }
  return std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0 ? 0 : 1;
}
