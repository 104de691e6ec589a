// What an application is told about a piece of work: a code that becomes its exit status, and one line.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace cvt::pipeline {

enum class Code : std::uint8_t { Ok, Usage, Input, Limit, Output, Partial };  // Partial: some of several images

/// `message` says what is wrong and, in brackets, what to do about it; it names no file.
struct [[nodiscard]] Status {
  Code code = Code::Ok;
  std::string message;
};

inline bool Failed(const Status& status) { return status.code != Code::Ok; }
inline Status Ok() { return {}; }
inline Status Fail(Code code, std::string message) { return {code, std::move(message)}; }

inline Status OutOfMemory() { return Fail(Code::Limit, "memory ran out (free some and try again)"); }

}  // namespace cvt::pipeline
