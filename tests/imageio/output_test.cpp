// How output files come into being: complete, under their name, or not at all.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;
using pipeline::Image;
using Names = std::vector<std::string>;

const Image kDot{1, 1, 8, pipeline::GrayRamp(8)};
constexpr const char* kDotFile = "P5\n1 1\n255\nA";

constexpr Unfinished kWays[] = {Unfinished::Nameless, Unfinished::Named};
constexpr Existing kExisting[] = {Existing::Refuse, Existing::Replace};

// A sink that has its row, and what it said of temporary files: their names, "gone" when they were.
struct Begun {
  Begun(const std::string& path, Existing existing, Unfinished unfinished, Format format = Format::Pgm) {
    WriteOptions options{format, existing};
    options.unfinished = unfinished;
    options.temporary = [this](const char* name, bool exists) { noted.push_back(exists ? name : "gone"); };
    constexpr std::uint8_t kRow[] = {0x41};
    EXPECT_EQ(CreateImage(path, options, &sink).message, "");
    EXPECT_EQ(sink.begin(kDot).message, "");
    EXPECT_EQ(sink.write(0, kRow).message, "");
  }
  Names noted;
  pipeline::RowSink sink;
};

bool HasNamelessFiles(const Folder& folder) {
  const int file = ::open(folder.path.c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, 0600);
  return file >= 0 && ::close(file) == 0;
}

TEST(Output, LeavesNothingWhenItDoesNotEnd) {
  const Folder folder;
  for (const Unfinished way : kWays) {
    const bool hidden = way == Unfinished::Nameless && HasNamelessFiles(folder);
    for (const Format format : WrittenFormats()) {
      {
        const Begun output(folder.Path("a"), Existing::Refuse, way, format);
        ASSERT_EQ(output.noted.size(), hidden ? 0U : 1U);
        EXPECT_EQ(folder.Names(), hidden ? Names{} : Names{std::filesystem::path(output.noted[0]).filename()});
      }
      EXPECT_TRUE(folder.Names().empty());
    }
  }
}

// Whoever ends the program has to know all names that a file may have, and no name for longer.
TEST(Output, TakesItsNameWhenItIsComplete) {
  constexpr std::filesystem::perms kOwn{0640};
  for (const Unfinished way : kWays) {
    for (const Existing existing : kExisting) {
      const Folder folder;
      const bool replaces = existing == Existing::Replace;
      if (replaces) std::filesystem::permissions(folder.Write("a", "old"), kOwn);
      const Begun output(folder.Path("a"), existing, way);
      EXPECT_EQ(folder.Read("a"), replaces ? "old" : "");
      ASSERT_EQ(output.sink.end().message, "");
      EXPECT_EQ(folder.Read("a"), kDotFile);
      EXPECT_EQ(folder.Names(), Names{"a"});
      EXPECT_TRUE(!replaces || std::filesystem::status(folder.path / "a").permissions() == kOwn);
      if (!replaces && output.noted.empty()) continue;  // it had no name before
      ASSERT_EQ(output.noted.size(), 2U);
      EXPECT_TRUE(output.noted[0].starts_with(folder.Path(".r2r-"))) << output.noted[0];
      EXPECT_EQ(output.noted[1], "gone");
    }
  }
}

// A directory cannot be replaced by a file.
TEST(Output, KeepsWhatAppearsMeanwhile) {
  for (const Unfinished way : kWays) {
    for (const Existing existing : kExisting) {
      const Folder folder;
      const bool file = existing == Existing::Refuse;
      {
        const Begun output(folder.Path("a"), existing, way);
        if (file) folder.Write("a", "theirs");
        if (!file) std::filesystem::create_directory(folder.path / "a");
        ExpectRefusal(output.sink.end(), Code::Output, file ? "the file exists" : "cannot take its name");
      }
      EXPECT_TRUE(!file || folder.Read("a") == "theirs");
      EXPECT_EQ(folder.Names(), Names{"a"});
    }
  }
}

TEST(Output, ReplacesWhatALinkLeadsTo) {
  const Folder folder;
  folder.Write("real.pgm", "old");
  std::filesystem::create_symlink("real.pgm", folder.path / "link.pgm");
  pipeline::RowSink sink;
  ExpectRefusal(CreateImage(folder.Path("link.pgm"), {}, &sink), Code::Output, "the file exists");
  EXPECT_EQ(folder.Read("real.pgm"), "old");
  ASSERT_EQ(Save(folder.Path("link.pgm"), {Format::FromSuffix, Existing::Replace}, kDot, {"41"}).message, "");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path / "link.pgm"));
  EXPECT_EQ(folder.Read("real.pgm"), kDotFile);
}

TEST(Output, TellsWhenTheDiskIsFull) {
  for (const Format format : WrittenFormats()) {
    ExpectRefusal(Save("/dev/full", {format}, kDot, {"41"}), Code::Output, "No space left");
  }
}

}  // namespace
}  // namespace cvt::imageio::test
