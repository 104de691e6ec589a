#include "app/files.h"

#include "app/interrupt.h"

namespace cvt::app {

std::string SourceName(const std::string& path) { return path == "-" ? "standard input" : path; }

std::string InputName(const Arguments& arguments) { return SourceName(arguments.input); }

std::string OutputName(const Arguments& arguments) {
  return arguments.output == "-" ? "standard output" : arguments.output;
}

imageio::Format WishedFormat(const Arguments& arguments) {
  return arguments.format ? static_cast<imageio::Format>(*arguments.format) : imageio::Format::FromSuffix;
}

Outcome OpenSource(const Arguments& arguments, const std::string& path, pipeline::RowSource* source) {
  imageio::ReadOptions options;
  if (arguments.background) options.background = *arguments.background;
  if (arguments.maxPixels) options.maxPixels = *arguments.maxPixels;
  return {imageio::OpenImage(path, options, source), SourceName(path)};
}

Outcome CreateSink(const Arguments& arguments, pipeline::RowSink* sink) {
  imageio::WriteOptions options;
  options.format = WishedFormat(arguments);
  if (arguments.force) options.existing = imageio::Existing::Replace;
  options.temporary = RemoveWhenInterrupted;
  const SignalsHeld held;  // between the creation of the file and the note of its name
  return {imageio::CreateImage(arguments.output, options, sink), OutputName(arguments)};
}

}  // namespace cvt::app
