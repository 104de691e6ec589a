// Many images: which are converted, what is told of each, and that a stop at any moment does no harm.
#include <gtest/gtest.h>
#include <zlib.h>

#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "run.h"

namespace cvt::app::test {
namespace {

using Names = std::vector<std::string>;
using Contents = std::map<std::string, std::string>;

constexpr int kImages = 12;

// Pictures a0.pgm, a1.pgm ... that differ in size and pixels.
void WriteImages(const Workplace& place) {
  for (int i = 0; i < kImages; ++i) {
    std::string pixels;
    const int height = 60 + 7 * i;
    for (int k = 0; k < 50 * height; ++k) pixels += static_cast<char>(k * (2 * i + 3) / 7 % 251);
    place.Write("a" + std::to_string(i) + ".pgm", "P5\n50 " + std::to_string(height) + "\n255\n" + pixels);
  }
}

Contents Outputs(const Workplace& place, const std::string& folder) {
  Contents contents;
  for (const auto& entry : std::filesystem::directory_iterator(place.path / folder)) {
    const std::string name = entry.path().filename();
    contents[name] = place.Read(folder + "/" + name);
  }
  return contents;
}

std::vector<nlohmann::json> Report(const Workplace& place, const std::string& name) {
  std::vector<nlohmann::json> lines;
  std::istringstream text(place.Read(name));
  for (std::string line; std::getline(text, line);) lines.push_back(nlohmann::json::parse(line));
  return lines;
}

TEST(Batch, WorkersShardsAndListsGiveTheSameFiles) {
  const Workplace place;
  WriteImages(place);
  ASSERT_EQ(place.Convert("*.pgm --depth 1 --out-dir one").status, 0);
  const Contents want = Outputs(place, "one");
  ASSERT_EQ(want.size(), static_cast<std::size_t>(kImages));
  EXPECT_EQ(place.Convert("a7.pgm single.pgm --depth 1").status, 0);
  EXPECT_TRUE(want.at("a7.pgm") == place.Read("single.pgm"));
  const char* const shards =
      "for i in 1 2 3 4 5; do \"$R2R\" convert a*.pgm --depth 1 --out-dir o/$i --shard $i/5 || exit; done\n"
      "mv o/?/*.pgm o && rmdir o/?";
  const char* const ways[] = {
      "\"$R2R\" convert a*.pgm --depth 1 --out-dir o -j 5",
      "ls a*.pgm | \"$R2R\" convert --files-from - --depth 1 --out-dir o -j 2",
      "printf '%s\\0' a?.pgm >list; \"$R2R\" convert a1?.pgm --files-from list -0 --depth 1 --out-dir o", shards};
  for (const char* way : ways) {
    const Ended ended = place.Shell("rm -rf o; " + std::string(way));
    EXPECT_EQ(ended.status, 0) << way << ended.err;
    EXPECT_TRUE(Outputs(place, "o") == want) << way;
  }
}

TEST(Batch, NamesOutputsByFormatAndKeepsOddNames) {
  const Workplace place;
  for (const char* name : {"x.y.pgm", "no suffix", "b.jpg", "l\nine.PGM"}) place.Write(name, "P2 1 1 255 9");
  EXPECT_EQ(place.Shell("printf '%s\\0' * | \"$R2R\" convert --files-from - -0 --out-dir own").status, 0);
  Names names;
  for (const auto& output : Outputs(place, "own")) names.push_back(output.first);
  EXPECT_EQ(names, (Names{"b.png", "l\nine.PGM", "no suffix.png", "x.y.pgm"}));
  EXPECT_EQ(place.Convert("x.y.pgm b.jpg --format pam --out-dir pam").status, 0);
  EXPECT_EQ(Outputs(place, "pam").count("x.y.pam") + Outputs(place, "pam").count("b.pam"), 2U);
}

TEST(Batch, GoesOnAfterABadFileAndReportsEach) {
  const Workplace place;
  WriteImages(place);
  place.Write("bad.pgm", "P5\n50 50\n255\nshort");
  const Ended ended = place.Convert("a1.pgm bad.pgm none.pgm a2.pgm --depth 1 --out-dir o -j 2 --report r");
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(Outputs(place, "o").size(), 2U);
  EXPECT_NE(ended.err.find("r2r: bad.pgm: "), std::string::npos) << ended.err;
  EXPECT_NE(ended.err.find("r2r: none.pgm: "), std::string::npos) << ended.err;
  EXPECT_NE(ended.err.find("r2r: 2 of 4 images failed"), std::string::npos) << ended.err;
  std::map<std::string, nlohmann::json> lines;
  for (const auto& line : Report(place, "r")) lines[line.at("input")] = line;
  ASSERT_EQ(lines.size(), 4U);
  const nlohmann::json& made = lines["a2.pgm"];
  EXPECT_EQ(made.at("output"), "o/a2.pgm");
  EXPECT_EQ(made.at("status"), "done");
  EXPECT_EQ(made.at("width"), 50);
  EXPECT_EQ(made.at("height"), 74);
  const Ended told = place.Convert("a2.pgm a2.png --depth 1 --report -");
  EXPECT_EQ(nlohmann::json::parse(told.out).at("crc32"), made.at("crc32"));
  const std::string raw = place.Convert("a2.pgm - --depth 1 --format raw").out;
  const auto crc = ::crc32_z(0, reinterpret_cast<const Bytef*>(raw.data()), raw.size());
  EXPECT_EQ(std::stoul(made.at("crc32").get<std::string>(), nullptr, 16), crc);
  EXPECT_EQ(lines["bad.pgm"].at("status"), "failed");
  EXPECT_TRUE(lines["bad.pgm"].at("message").get<std::string>().starts_with("bad.pgm: "));
  EXPECT_TRUE(lines["none.pgm"].at("crc32").is_null());
}

TEST(Batch, ExistingOutputsAreRefusedSkippedOrReplaced) {
  const Workplace place;
  WriteImages(place);
  ASSERT_EQ(place.Shell("mkdir o; printf old >o/a1.pgm").status, 0);
  const std::string words = "a1.pgm a2.pgm --depth 1 --out-dir o --report r ";
  EXPECT_EQ(place.Convert(words).status, 1);
  EXPECT_EQ(place.Read("o/a1.pgm"), "old");
  EXPECT_EQ(place.Convert(words + "--skip-existing").status, 0);
  EXPECT_EQ(place.Read("o/a1.pgm"), "old");
  const auto lines = Report(place, "r");  // of both runs
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[2].at("status"), "skipped");
  EXPECT_EQ(lines[3].at("status"), "skipped");
  EXPECT_EQ(place.Convert(words + "--force").status, 0);
  EXPECT_NE(place.Read("o/a1.pgm"), "old");
  EXPECT_EQ(Report(place, "r").size(), 2U);
  EXPECT_EQ(place.Convert("a3.pgm o/a1.pgm --depth 1 --skip-existing").status, 0);
  EXPECT_EQ(place.Read("o/a1.pgm"), place.Convert("a1.pgm - --format pgm --depth 1").out);
}

// Killed without warning again and again, each time a little later, and started again: what is there is
// complete, what is missing is made, and nothing else is ever left.
TEST(Batch, KilledAtAnyMomentItCanGoOn) {
  const Workplace place;
  WriteImages(place);
  ASSERT_EQ(place.Convert("*.pgm --size 400 --depth 1 --out-dir want").status, 0);
  const Contents want = Outputs(place, "want");
  for (int round = 0; round < 10; ++round) {
    place.Shell("\"$R2R\" convert *.pgm --size 400 --depth 1 --out-dir o --skip-existing -j 3 & sleep 0.0" +
                std::to_string(round + 1) + "; kill -KILL $!; wait");
    if (!std::filesystem::exists(place.path / "o")) continue;
    for (const auto& [name, bytes] : Outputs(place, "o")) {
      ASSERT_TRUE(want.contains(name)) << name;
      ASSERT_TRUE(bytes == want.at(name)) << name;
    }
  }
  EXPECT_EQ(place.Convert("*.pgm --size 400 --depth 1 --out-dir o --skip-existing").status, 0);
  EXPECT_TRUE(Outputs(place, "o") == want);
}

}  // namespace
}  // namespace cvt::app::test
