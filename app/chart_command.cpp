#include "app/chart_command.h"

#include <vector>

#include "app/files.h"
#include "pipeline/chart.h"

namespace cvt::app {

using pipeline::Failed;
using pipeline::RowSink;
using pipeline::RowSource;
using pipeline::Status;

namespace {

Status CopyRows(const RowSource& source, const RowSink& sink) {
  if (Status failed = sink.begin(source.image); Failed(failed)) return failed;
  std::vector<std::uint8_t> row(pipeline::RowBytes(source.image));
  for (std::int32_t y = 0; y < source.image.height; ++y) {
    if (Status failed = source.read(row.data()); Failed(failed)) return failed;
    if (Status failed = sink.write(y, row.data()); Failed(failed)) return failed;
  }
  return sink.end();
}

}  // namespace

Outcome RunChart(const Arguments& arguments) {
  RowSink sink;
  const Files files{"", arguments.operands[0]};
  if (Outcome failed = CreateSink(arguments, files, &sink); app::Failed(failed)) return failed;
  return {CopyRows(pipeline::ReadChart(), sink), OutputName(files)};
}

}  // namespace cvt::app
