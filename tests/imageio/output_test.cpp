// How output files come into being: complete, under their name, or not at all.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;
using pipeline::GrayRamp;
using pipeline::Image;
using Names = std::vector<std::string>;

const Image kDot{1, 1, 8, GrayRamp(8)};
constexpr const char* kDotFile = "P5\n1 1\n255\nA";

constexpr Unfinished kWays[] = {Unfinished::Nameless, Unfinished::Named};

// A sink that was begun, and what it said of temporary files: their names, "gone" when they were.
struct Begun {
  Begun(const std::string& path, Existing existing, Unfinished unfinished) {
    WriteOptions options{Format::FromSuffix, existing};
    options.unfinished = unfinished;
    options.temporary = [this](const char* name, bool exists) { noted.push_back(exists ? name : "gone"); };
    EXPECT_EQ(CreateImage(path, options, &sink).message, "");
    EXPECT_EQ(sink.begin(kDot).message, "");
  }
  pipeline::Status End() const {
    constexpr std::uint8_t kRow[] = {0x41};
    EXPECT_EQ(sink.write(0, kRow).message, "");
    return sink.end();
  }
  Names noted;
  pipeline::RowSink sink;
};

bool HasNamelessFiles(const Folder& folder) {
  const int file = ::open(folder.path.c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, 0600);
  return file >= 0 && ::close(file) == 0;
}

TEST(Output, HasItsNameOnlyWhenItIsComplete) {
  const Folder folder;
  for (const Unfinished way : kWays) {
    const Begun output(folder.Path("a.pgm"), Existing::Refuse, way);
    EXPECT_EQ(folder.Read("a.pgm"), "");
    ASSERT_EQ(output.End().message, "");
    EXPECT_EQ(folder.Read("a.pgm"), kDotFile);
    EXPECT_EQ(folder.Names(), Names{"a.pgm"});
    std::filesystem::remove(folder.path / "a.pgm");
  }
}

TEST(Output, LeavesNothingWhenItDoesNotEnd) {
  const Folder folder;
  for (const char* name : {"a.png", "a.pgm"}) {
    {
      const Begun output(folder.Path(name), Existing::Refuse, Unfinished::Named);
      ASSERT_EQ(output.noted.size(), 1U);
      EXPECT_EQ(folder.Names(), Names{std::filesystem::path(output.noted[0]).filename()});
    }
    EXPECT_TRUE(folder.Names().empty());
  }
}

TEST(Output, IsNowhereToBeSeenWhereTheSystemCanHideIt) {
  const Folder folder;
  if (!HasNamelessFiles(folder)) GTEST_SKIP() << "no nameless files here";
  {
    const Begun output(folder.Path("a.pgm"), Existing::Refuse, Unfinished::Nameless);
    EXPECT_TRUE(folder.Names().empty());
  }
  EXPECT_TRUE(folder.Names().empty());
}

// Whoever ends the program has to know all names that a file may have, and no name for longer.
TEST(Output, TellsOfEveryTemporaryNameUntilItIsGone) {
  const Folder folder;
  for (const Unfinished way : kWays) {
    folder.Write("a.pgm", "old");
    const Begun output(folder.Path("a.pgm"), Existing::Replace, way);
    ASSERT_EQ(output.End().message, "");
    ASSERT_EQ(output.noted.size(), 2U);
    EXPECT_TRUE(output.noted[0].starts_with(folder.Path(".r2r-"))) << output.noted[0];
    EXPECT_EQ(output.noted[1], "gone");
    EXPECT_EQ(folder.Names(), Names{"a.pgm"});
    EXPECT_EQ(folder.Read("a.pgm"), kDotFile);
  }
}

TEST(Output, KeepsAFileThatExists) {
  const Folder folder;
  folder.Write("a.pgm", "old");
  pipeline::RowSink sink;
  EXPECT_EQ(CreateImage(folder.Path("a.pgm"), {}, &sink).code, Code::Output);
  EXPECT_EQ(folder.Read("a.pgm"), "old");
  EXPECT_EQ(folder.Names(), Names{"a.pgm"});
}

TEST(Output, KeepsAFileThatAppearsMeanwhile) {
  for (const Unfinished way : kWays) {
    const Folder folder;
    {
      const Begun output(folder.Path("a.pgm"), Existing::Refuse, way);
      folder.Write("a.pgm", "theirs");
      EXPECT_EQ(output.End().code, Code::Output);
    }
    EXPECT_EQ(folder.Read("a.pgm"), "theirs");
    EXPECT_EQ(folder.Names(), Names{"a.pgm"});
  }
}

// A directory that came into being cannot be replaced by a file.
TEST(Output, LeavesNothingWhenItCannotTakeItsName) {
  for (const Unfinished way : kWays) {
    const Folder folder;
    {
      const Begun output(folder.Path("a.pgm"), Existing::Replace, way);
      std::filesystem::create_directory(folder.path / "a.pgm");
      EXPECT_EQ(output.End().code, Code::Output);
    }
    EXPECT_EQ(folder.Names(), Names{"a.pgm"});
  }
}

TEST(Output, ReplacesWhenToldToAndKeepsThePermissions) {
  for (const Unfinished way : kWays) {
    const Folder folder;
    const std::string path = folder.Write("a.pgm", "old");
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    ASSERT_EQ(Begun(path, Existing::Replace, way).End().message, "");
    EXPECT_EQ(folder.Read("a.pgm"), kDotFile);
    struct stat about {};
    ASSERT_EQ(::stat(path.c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 0777, 0640U);
  }
}

TEST(Output, ReplacesWhatALinkLeadsTo) {
  const Folder folder;
  folder.Write("real.pgm", "old");
  std::filesystem::create_symlink("real.pgm", folder.path / "link.pgm");
  EXPECT_EQ(Save(folder.Path("link.pgm"), {}, kDot, {"41"}).code, Code::Output);
  ASSERT_EQ(Save(folder.Path("link.pgm"), {Format::FromSuffix, Existing::Replace, {}}, kDot, {"41"}).message, "");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path / "link.pgm"));
  EXPECT_EQ(folder.Read("real.pgm"), kDotFile);
}

TEST(Output, TellsWhenTheDiskIsFull) {
  for (const Format format : {Format::Png, Format::Pgm}) {
    const pipeline::Status status = Save("/dev/full", {format, Existing::Refuse, {}}, kDot, {"41"});
    EXPECT_EQ(status.code, Code::Output);
    EXPECT_NE(status.message.find("No space left"), std::string::npos) << status.message;
  }
}

TEST(Output, NeedsAFormatAndADirectory) {
  const Folder folder;
  pipeline::RowSink sink;
  EXPECT_EQ(CreateImage("-", {}, &sink).code, Code::Usage);
  EXPECT_EQ(CreateImage(folder.Path("a.jpg"), {}, &sink).code, Code::Usage);
  EXPECT_EQ(CreateImage(folder.Path("png"), {}, &sink).code, Code::Usage);
  EXPECT_EQ(CreateImage(folder.Path("none/a.png"), {}, &sink).code, Code::Output);
  EXPECT_EQ(CreateImage(folder.path.string(), {Format::Png, Existing::Replace, {}}, &sink).code, Code::Output);
  EXPECT_TRUE(folder.Names().empty());
}

TEST(Output, SuffixesMayBeInCapitals) {
  const Folder folder;
  ASSERT_EQ(Save(folder.Path("A.PGM"), {}, kDot, {"41"}).message, "");
  EXPECT_EQ(folder.Read("A.PGM"), kDotFile);
}

}  // namespace
}  // namespace cvt::imageio::test
