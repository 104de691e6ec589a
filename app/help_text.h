// The help of a command as people read it: its forms, its options by group, lines that fit a screen.
#pragma once

#include <string>

#include "app/commands.h"

namespace CLI {
class App;
}

namespace cvt::app {

/// Help for one command, or for the tool where `command` is null.
std::string HelpText(const CLI::App& root, const Command* command);

}  // namespace cvt::app
