// What every command works with: the system, the chosen program folder, and the ways to the user.
#pragma once

#include <string_view>

#include "cli/system.h"
#include "state/settings.h"

namespace quenlar {

class Invocation {
 public:
  Invocation(System& system, PlatformChoice choice) : system_(system), choice_(std::move(choice)) {}

  [[nodiscard]] System& system() { return system_; }
  [[nodiscard]] Console& console() { return system_.console(); }
  [[nodiscard]] PlatformChoice& choice() { return choice_; }
  // The program folder, with the standard search engine.
  [[nodiscard]] Installation installation() const;

  // Writes one line to standard error. Nothing in it can steer a terminal.
  void Say(std::string_view message) { SayOn(console(), message); }
  static void SayOn(Console& console, std::string_view message);
  // Writes why the command fails, and returns the exit status for it.
  [[nodiscard]] int Fail(const Status& why);

  // Writes one line of results: `text` and a line feed. Returns false when there is no reader any more.
  bool Print(std::string_view text);

 private:
  System& system_;
  PlatformChoice choice_;
};

}  // namespace quenlar
