// One image from file to file, as the options say.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "app/choose.h"
#include "app/files.h"
#include "app/option_table.h"
#include "app/report.h"
#include "imageio/image_file.h"

namespace cvt::app {

/// What became of an image.
struct Made {
  std::int32_t fromWidth = 0, fromHeight = 0;
  std::int32_t width = 0, height = 0, depth = 0;
  std::uint32_t crc = 0;  // with --report: CRC-32 of the rows, as raw output has them
  bool held = false;      // with a report: interrupts are held until the output's line is in it
};

enum class Messages : std::uint8_t { Quiet, Progress };

/// Opens the image and settles what becomes of it when it is written as `format`.
Outcome OpenConversion(const Arguments& arguments, const Wishes& wishes, const Files& files,
                       imageio::Format format, pipeline::RowSource* source, Chosen* chosen);

/// Opens what the rows go into, once everything before it went well.
using CreateRows = std::function<Outcome(pipeline::RowSink* sink)>;

/// Converts one image into rows as they are written in `format`; `made` is complete when that went well.
Outcome ConvertInto(const Arguments& arguments, const Wishes& wishes, const Files& files, imageio::Format format,
                    const CreateRows& create, Messages messages, Made* made);

/// The same, into the output file. Who writes its line of the report releases the interrupts that are held.
Outcome ConvertImage(const Arguments& arguments, const Wishes& wishes, const Files& files, Messages messages,
                     Made* made);

}  // namespace cvt::app
