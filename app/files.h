// The files of a command as its options name them.
#pragma once

#include <functional>
#include <string>

#include "app/option_table.h"
#include "app/report.h"
#include "imageio/image_file.h"

namespace cvt::app {

/// Of one conversion; "-" is standard input or output.
struct Files {
  std::string input, output;
};

/// How messages name an image that is read, the input and the output.
std::string SourceName(const std::string& path);
std::string InputName(const Files& files);
std::string OutputName(const Files& files);

/// --format, Format::FromSuffix when it is not given.
imageio::Format WishedFormat(const Arguments& arguments);

/// How the options say that images are read.
imageio::ReadOptions ReadingOptions(const Arguments& arguments);

/// Opens an image so; "-" is standard input.
Outcome OpenSource(const Arguments& arguments, const std::string& path, pipeline::RowSource* source);

/// Creates the output; `naming` is called when it is complete and about to take its name.
Outcome CreateSink(const Arguments& arguments, const Files& files, pipeline::RowSink* sink,
                   std::function<void()> naming = {});

}  // namespace cvt::app
