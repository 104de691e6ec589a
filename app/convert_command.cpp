#include "app/convert_command.h"

#include <cstdio>
#include <string>

#include "app/batch.h"
#include "app/convert_image.h"

namespace cvt::app {

namespace {

// Options that only make sense for many images; null: the next.
const char* ManyOnly(const Arguments& arguments) {
  if (arguments.filesFrom) return "--files-from";
  if (arguments.nulBetween) return "-0";
  if (arguments.jobs) return "-j";
  return arguments.shard ? "--shard" : nullptr;
}

Outcome CheckOptions(const Arguments& arguments) {
  if (arguments.nulBetween && !arguments.filesFrom) {
    return Usage("-0", "it belongs to --files-from (give that too, or leave it out)");
  }
  if (arguments.force && arguments.skipExisting) {
    return Usage("--skip-existing", "it contradicts --force (leave out one of them)");
  }
  const char* many = arguments.outDir ? nullptr : ManyOnly(arguments);
  if (many != nullptr) return Usage(many, "it is for many images (give --out-dir DIR too, or leave it out)");
  return Done();
}

Outcome CheckPair(const std::vector<std::string>& operands) {
  const std::string form = " (give r2r convert INPUT OUTPUT, or INPUT... --out-dir DIR)";
  if (operands.empty()) return Usage("INPUT", "it is missing" + form);
  if (operands.size() == 1) return Usage("OUTPUT", "it is missing" + form);
  return operands.size() == 2 ? Done() : Usage(operands[2], "one operand too many" + form);
}

}  // namespace

Outcome RunConvert(const Arguments& arguments) {
  if (Outcome failed = CheckOptions(arguments); Failed(failed)) return failed;
  if (arguments.outDir) {
    std::vector<Files> files;
    if (Outcome failed = ListFiles(arguments, &files); Failed(failed)) return failed;
    return ConvertMany(arguments, files);
  }
  if (Outcome failed = CheckPair(arguments.operands); Failed(failed)) return failed;
  if (arguments.report == "-" && arguments.operands[1] == "-") {
    return Usage("--report", "standard output is the image already (give a file)");
  }
  return ConvertOne(arguments, {arguments.operands[0], arguments.operands[1]});
}

}  // namespace cvt::app
