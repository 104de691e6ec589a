// Lists, presets, the chart and what `r2r verify` makes of it.
#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "run.h"

namespace cvt::app::test {
namespace {

using Listed = std::map<std::string, std::vector<std::string>>;

// Option by option, the words that a list shows for it; forms such as FILE.pgm are left out.
Listed Words(const std::string& list) {
  Listed words;
  std::string option;
  std::istringstream lines(list);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("--")) option = line;
    const std::string word = line.substr(0, line.find(' ', 2)).substr(2);
    if (line.starts_with("  ") && !word.empty() && word[0] >= 'a') words[option].push_back(word);
  }
  return words;
}

std::string Colors() {
  std::string file = "P6\n24 24\n255\n";
  for (int i = 0; i < 24 * 24 * 3; ++i) file += static_cast<char>(i * 37 % 256);
  return file;
}

TEST(List, ShowsWhatTheParserTakes) {
  const Workplace place;
  place.Write("in", Colors());
  const std::map<std::string, std::string> company = {{"--halftone", " --depth 2"},
                                                      {"--matrix", " --depth 1 --halftone ordered"},
                                                      {"--reduce", " --size 10"},
                                                      {"--compress", " --palette bw --format tiff"}};
  std::size_t options = 0;
  for (const char* topic : {"methods", "matrices", "palettes", "formats", "presets"}) {
    const Ended list = place.Shell(std::string("\"$R2R\" list ") + topic);
    EXPECT_EQ(list.status, 0) << topic << ": " << list.err;
    for (const auto& [option, words] : Words(list.out)) {
      ++options;
      EXPECT_GT(words.size(), 1U) << option;
      for (const std::string& word : words) {
        const std::string with = company.contains(option) ? company.at(option) : "";
        const bool tells = (option + with).find("--format") != std::string::npos;
        const std::string output = tells ? " in - " : " in - --format png ";
        const Ended ended = place.Convert(option + " " + word + with + output);
        EXPECT_EQ(ended.status, 0) << option << " " << word << ": " << ended.err;
        EXPECT_NE(ended.out, "") << option << " " << word;
      }
    }
  }
  EXPECT_EQ(options, 8U);
}

TEST(Preset, GivesWayToOptionsThatAreGiven) {
  const Workplace place;
  place.Write("in", Colors());
  struct Case {
    const char* preset;
    const char* same;  // what it comes to
  };
  constexpr Case kCases[] = {
      {"--preset fax", "--threshold 128"},
      {"--preset fax --threshold 90", "--threshold 90"},
      {"--preset label", "--depth 1 --halftone ordered --matrix cluster4"},
      {"--matrix bayer4 --preset label", "--depth 1 --halftone ordered --matrix bayer4"},
      {"--preset label --halftone diffusion", "--depth 1 --halftone diffusion"},
      {"--preset label --threshold 90", "--threshold 90"},
      {"--preset photo-1bit --gamma 1", "--depth 1"},
      {"--preset web-256 --depth 4", "--depth 4"},
      {"--preset web-256 --palette gray", "--depth 8 --palette gray --halftone diffusion"},
      {"--preset epaper-7", "--palette epaper-7 --halftone diffusion"},
      {"--preset epaper-7 --palette '#000,#fff'", "--palette '#000,#fff' --halftone diffusion"}};
  for (const Case& c : kCases) {
    const Ended preset = place.Convert(std::string(c.preset) + " in - --format png");
    EXPECT_EQ(preset.status, 0) << c.preset << ": " << preset.err;
    EXPECT_EQ(preset.out, place.Convert(std::string(c.same) + " in - --format png").out) << c.preset;
  }
}

TEST(Chart, IsWrittenInEveryFormatThatHoldsColours) {
  const Workplace place;
  ASSERT_EQ(place.Shell("\"$R2R\" chart c.png").status, 0);
  ASSERT_EQ(place.Shell("\"$R2R\" chart c.ppm").status, 0);
  const std::string chart = place.Read("c.ppm");
  ASSERT_EQ(place.Convert("c.png d.ppm").status, 0);
  EXPECT_TRUE(place.Read("d.ppm") == chart);
  EXPECT_TRUE(place.Shell("\"$R2R\" chart - --format ppm").out == chart);
  EXPECT_EQ(chart.size(), std::size_t{15 + 960 * 720 * 3});
  EXPECT_EQ(place.Shell("\"$R2R\" chart c.png").status, 5);
  EXPECT_EQ(place.Shell("\"$R2R\" chart c.png --force").status, 0);
  EXPECT_EQ(place.Shell("\"$R2R\" chart c.pgm").status, 2);
  EXPECT_EQ(place.Names(), (std::vector<std::string>{"c.png", "c.ppm", "d.ppm"}));
}

TEST(Verify, FindsAllResultsTheSame) {
  const Workplace place;
  const Ended ended = place.Shell("\"$R2R\" verify");
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.out, "31 of 31 reference results are the same\n");
}

}  // namespace
}  // namespace cvt::app::test
