// The files of a command as its options name them.
#pragma once

#include "app/option_table.h"
#include "app/report.h"
#include "imageio/image_file.h"

namespace cvt::app {

/// How messages name the input and the output.
std::string InputName(const Arguments& arguments);
std::string OutputName(const Arguments& arguments);

/// --format, Format::FromSuffix when it is not given.
imageio::Format WishedFormat(const Arguments& arguments);

Outcome OpenSource(const Arguments& arguments, pipeline::RowSource* source);

Outcome CreateSink(const Arguments& arguments, pipeline::RowSink* sink);

}  // namespace cvt::app
