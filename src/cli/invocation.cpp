#include "cli/invocation.h"

#include "base/status.h"
#include "cli/exit_status.h"
#include "cli/terminal_text.h"

namespace quenlar {

Installation Invocation::installation() const {
  Installation installation;
  installation.program_folder = choice_.home;
  installation.separator = system_.separator();
  return installation;
}

void Invocation::SayOn(Console& console, std::string_view message) { console.WriteError(ForTerminal(message) + "\n"); }

int Invocation::Fail(const Status& why) {
  Say(SentenceOf(why));
  return kExitFailed;
}

bool Invocation::Print(std::string_view text) {
  return console().Write((console().OutputIsTerminal() ? ForTerminal(text) : std::string(text)) + "\n");
}

}  // namespace quenlar
