#include "app/commands.h"

#include <limits>
#include <string>

#include "app/chart_command.h"
#include "app/contact_sheet.h"
#include "app/convert_command.h"
#include "app/info_command.h"
#include "app/list_command.h"
#include "app/verify_command.h"

namespace cvt::app {

namespace {

constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

constexpr Command kCommands[] = {
    {"convert",
     "Convert images; \"-\" is standard input or output",
     {"r2r convert [OPTIONS] INPUT OUTPUT", "r2r convert [OPTIONS] INPUT... --out-dir DIR"},
     "images: PNG, TIFF, JPEG, PBM, PGM, PPM, PAM in; PNG, TIFF, PBM, PGM, PPM, PAM, raw rows, C arrays out",
     0,
     kAnyNumber,
     RunConvert,
     Command::kAllOptions},
    {"contact-sheet",
     "Show every method on one image, with the command line of each",
     {"r2r contact-sheet [OPTIONS] INPUT OUTPUT"},
     "an image file, and the .png picture or .html page to write",
     2,
     2,
     RunContactSheet,
     " --crop --size --reduce --enlarge --background --gamma --palette --force --page --max-pixels --max-memory "
     "-q "},
    {"chart",
     "Write the test chart",
     {"r2r chart [OPTIONS] OUTPUT"},
     "PNG, TIFF, PPM, PAM, raw or a C source",
     1,
     1,
     RunChart,
     " --format --compress --force "},
    {"list",
     "List what can be chosen from",
     {"r2r list methods|matrices|palettes|formats|presets"},
     "methods, matrices, palettes, formats or presets",
     1,
     1,
     RunList,
     ""},
    {"info",
     "Tell format, size, depth, layout, palette and resolution of images",
     {"r2r info [OPTIONS] FILE..."},
     "images: PNG, TIFF, JPEG, PBM, PGM, PPM, PAM; \"-\" is standard input",
     1,
     kAnyNumber,
     RunInfo,
     " --max-pixels --max-memory --page "},
    {"verify",
     "Recompute the built-in reference results on this machine",
     {"r2r verify [OPTIONS]"},
     "none",
     0,
     0,
     RunVerify,
     " -v "}};

}  // namespace

std::span<const Command> Commands() { return kCommands; }

bool Takes(const Command& command, const OptionRow& option) {
  return command.options == Command::kAllOptions ||
         command.options.find(" " + std::string(option.name) + " ") != std::string_view::npos;
}

}  // namespace cvt::app
