#include "app/files.h"

#include <utility>

#include "app/interrupt.h"

namespace cvt::app {

std::string SourceName(const std::string& path) { return path == "-" ? "standard input" : path; }

std::string InputName(const Files& files) { return SourceName(files.input); }

std::string OutputName(const Files& files) { return files.output == "-" ? "standard output" : files.output; }

imageio::Format WishedFormat(const Arguments& arguments) {
  return arguments.format ? static_cast<imageio::Format>(*arguments.format) : imageio::Format::FromSuffix;
}

imageio::ReadOptions ReadingOptions(const Arguments& arguments) {
  imageio::ReadOptions options;
  if (arguments.background) options.background = *arguments.background;
  if (arguments.maxPixels) options.maxPixels = *arguments.maxPixels;
  if (arguments.maxMemory) options.maxBufferBytes = *arguments.maxMemory << 20;
  if (arguments.page) options.page = static_cast<std::int32_t>(*arguments.page);
  return options;
}

Outcome OpenSource(const Arguments& arguments, const std::string& path, pipeline::RowSource* source) {
  return {imageio::OpenImage(path, ReadingOptions(arguments), source), SourceName(path)};
}

Outcome CreateSink(const Arguments& arguments, const Files& files, pipeline::RowSink* sink,
                   std::function<void()> naming) {
  imageio::WriteOptions options;
  options.format = WishedFormat(arguments);
  if (arguments.compress) options.compression = static_cast<imageio::Compression>(*arguments.compress);
  if (arguments.force) options.existing = imageio::Existing::Replace;
  options.temporary = RemoveWhenInterrupted;
  options.naming = std::move(naming);
  return {imageio::CreateImage(files.output, options, sink), OutputName(files)};
}

}  // namespace cvt::app
