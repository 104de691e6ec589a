// Bundles of options for common jobs.
#pragma once

#include <span>
#include <string_view>

namespace cvt::app {

struct PresetOption {
  const char* name;  // null: none, and none follows
  const char* value;
  const char* owner = nullptr;  // the option that rules over it: where that is given, this one is left out
};

struct Preset {
  const char* name;
  const char* what;
  PresetOption options[3];
};

std::span<const Preset> Presets();

}  // namespace cvt::app
