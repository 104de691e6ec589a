// Images, one or many: which they are, and their conversion by several workers.
#pragma once

#include <vector>

#include "app/files.h"
#include "app/option_table.h"
#include "app/report.h"

namespace cvt::app {

/// The inputs of the operands and of --files-from with their outputs in --out-dir, --shard's share of them.
/// Code::Usage where two of all inputs would get one output, or where there is none.
Outcome ListFiles(const Arguments& arguments, std::vector<Files>* files);

/// Converts one image; --skip-existing and --report as the options say.
Outcome ConvertOne(const Arguments& arguments, const Files& files);

/// Converts all of them, -j at a time, and goes on after those that fail: these are told one by one, and
/// Code::Partial in the end.
Outcome ConvertMany(const Arguments& arguments, const std::vector<Files>& files);

}  // namespace cvt::app
