// Declares a fuzz target. A target is a function over bytes that must neither crash nor break a promise it checks with
// FUZZ_CHECK. Built for libFuzzer it is that engine's entry point; built into the ordinary tests it is registered by
// name, and its seeds and finds are replayed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace quenlar::fuzz {

using TargetFunction = void (*)(std::string_view bytes);

struct Target {
  const char* name;
  TargetFunction run;
};

// The targets of this program, in no particular order.
std::vector<Target>& Targets();

struct Registration {
  Registration(const char* name, TargetFunction run) { Targets().push_back({name, run}); }
};

[[noreturn]] inline void Broken(const char* what, const char* file, int line) {
  std::fprintf(stderr, "%s:%d: broken promise: %s\n", file, line, what);
  std::abort();
}

// Hands out pieces of the fuzzer's bytes.
class Feed {
 public:
  explicit Feed(std::string_view bytes) : bytes_(bytes) {}
  [[nodiscard]] std::uint8_t Byte() {
    if (bytes_.empty()) return 0;
    const auto byte = static_cast<std::uint8_t>(bytes_.front());
    bytes_.remove_prefix(1);
    return byte;
  }
  // Up to the next NUL, or all.
  [[nodiscard]] std::string_view Text() {
    const std::size_t end = bytes_.find('\0');
    const std::string_view text = bytes_.substr(0, end);
    bytes_.remove_prefix(end == bytes_.npos ? bytes_.size() : end + 1);
    return text;
  }
  [[nodiscard]] std::string_view Rest() const { return bytes_; }
  [[nodiscard]] bool empty() const { return bytes_.empty(); }

 private:
  std::string_view bytes_;
};

}  // namespace quenlar::fuzz

#define FUZZ_CHECK(condition)                                                \
  do {                                                                       \
    if (!(condition)) quenlar::fuzz::Broken(#condition, __FILE__, __LINE__); \
  } while (false)

// QUENLAR_FUZZ_TARGET(links) { ... uses `bytes` ... }
#define QUENLAR_FUZZ_TARGET(name)                                                   \
  static void Fuzz_##name(std::string_view bytes);                                  \
  static const quenlar::fuzz::Registration registration_##name(#name, Fuzz_##name); \
  static void Fuzz_##name(std::string_view bytes)
