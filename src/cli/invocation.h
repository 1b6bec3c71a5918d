// What every command works with: the system, the chosen program folder, and words for the user.
#pragma once

#include <string>
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

  // One line on standard error, fit for a terminal.
  void Say(std::string_view message) { SayOn(console(), message); }
  static void SayOn(Console& console, std::string_view message);
  // Says why a command fails, and gives the exit status of that.
  [[nodiscard]] int Fail(const Status& why);

  // One line of results: `text` and a line feed. False when nobody reads.
  bool Print(std::string_view text);

 private:
  System& system_;
  PlatformChoice choice_;
};

}  // namespace quenlar
