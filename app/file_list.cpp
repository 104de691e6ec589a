// Which images many conversions read and write.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>

#include "app/batch.h"

namespace cvt::app {

namespace {

Outcome ReadNames(const Arguments& arguments, std::vector<std::string>* names) {
  const std::string& list = *arguments.filesFrom;
  std::ifstream file;
  if (list != "-") file.open(list, std::ios::binary);
  std::istream& lines = list == "-" ? std::cin : file;
  std::string name;
  while (std::getline(lines, name, arguments.nulBetween ? '\0' : '\n')) {
    if (!name.empty()) names->push_back(name);
  }
  const bool failed = list == "-" && std::ferror(stdin) != 0;  // which std::cin takes for the end
  if (lines.eof() && !lines.bad() && !failed) return Done();
  return {
      pipeline::Fail(pipeline::Code::Input, "the list of files cannot be read (check its name and permissions)"),
      SourceName(list)};
}

// The name of the input in the other directory, with the suffix of its format if that is asked for, and
// of PNG if its own tells no format that can be written.
std::string OutputFor(const Arguments& arguments, const std::string& input) {
  std::filesystem::path name = std::filesystem::path(input).filename();
  imageio::Format format = WishedFormat(arguments);
  if (arguments.format) {
    name.replace_extension(imageio::SuffixOf(format));
  } else if (pipeline::Failed(imageio::ChooseFormat(name.string(), format, &format))) {
    name.replace_extension(".png");
  }
  return (std::filesystem::path(*arguments.outDir) / name).string();
}

Outcome CheckInput(const std::string& input) {
  if (input == "-") return Usage("-", "standard input has no name for its output (give files with --out-dir)");
  if (!std::filesystem::path(input).filename().empty()) return Done();
  return Usage(input, "this names no file (leave out the / at its end)");
}

}  // namespace

Outcome ListFiles(const Arguments& arguments, std::vector<Files>* files) {
  std::vector<std::string> inputs = arguments.operands;
  if (arguments.filesFrom) {
    if (Outcome failed = ReadNames(arguments, &inputs); Failed(failed)) return failed;
  }
  if (inputs.empty()) return Usage("INPUT", "there is none (give names, or a list of them with --files-from)");
  std::map<std::string, std::string> inputOf;
  const Shard shard = arguments.shard.value_or(Shard{});
  std::int64_t part = 0;
  for (const std::string& input : inputs) {
    if (Outcome failed = CheckInput(input); Failed(failed)) return failed;
    const std::string output = OutputFor(arguments, input);
    const auto [other, isNew] = inputOf.emplace(output, input);
    if (!isNew) {
      return Usage(input, "its output " + output + " is that of " + other->second +
                              " too (rename one, or convert them into two directories)");
    }
    if (part++ % shard.count + 1 == shard.index) files->push_back({input, output});
  }
  return Done();
}

}  // namespace cvt::app
