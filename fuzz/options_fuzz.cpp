// Any words as a command line: understood or refused with one line that says what to do. Nothing is run.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/command_line.h"
#include "app/commands.h"

namespace {

using namespace cvt::app;

// What the tables know, so that mutations need not spell it.
std::vector<std::string> KnownWords() {
  std::vector<std::string> words;
  for (const Command& command : Commands()) words.emplace_back(command.name);
  for (const OptionRow& row : ConvertOptions()) {
    words.emplace_back(row.name);
    if (const auto* choice = std::get_if<Choice>(&row.kind))
      for (const Word& word : choice->words) words.emplace_back(word.name);
  }
  return words;
}

// A line is a word; a byte above ASCII stands for one of the known words.
std::vector<std::string> Words(const std::uint8_t* data, std::size_t size) {
  static const std::vector<std::string> known = KnownWords();
  std::vector<std::string> words = {"r2r", ""};
  for (std::size_t i = 0; i < size; ++i) {
    if (data[i] == '\n')
      words.emplace_back();
    else if (data[i] >= 0x80)
      words.back() += known[(data[i] - 0x80u) % known.size()];
    else if (data[i] != 0)
      words.back() += static_cast<char>(data[i]);
  }
  return words;
}

bool InRange(const Arguments& arguments) {
  for (const OptionRow& row : ConvertOptions()) {
    const auto* number = std::get_if<Number>(&row.kind);
    if (number == nullptr) continue;
    const std::optional<std::int64_t> value = arguments.*number->target;
    if (value && (*value < number->least || *value > number->most)) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string> words = Words(data, size);
  Request request;
  const Outcome outcome = ParseWords(words, &request);
  if (Failed(outcome)) {
    const std::string line = LineOf(outcome);
    if (!line.ends_with(')') || line.find(" (") == std::string::npos) std::abort();
  } else if ((request.run == nullptr) == request.text.empty() || !InRange(request.arguments)) {
    std::abort();
  }
  return 0;
}
