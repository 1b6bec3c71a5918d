// quenlar erase: takes an address out of all collections and reports.
#include <string>

#include "base/product.h"
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/tell_erased.h"
#include "cli/workplace.h"
#include "engine/home.h"
#include "engine/never_list.h"
#include "platform/message_boxes.h"

namespace quenlar {
namespace {

// Whether the user says yes; where nobody can be asked, a message says so.
bool IsConfirmed(Invocation& invocation, const Platform& platform, const EraseArguments& arguments) {
  if (arguments.yes) return true;
  if (!invocation.console().InputIsTerminal()) {
    invocation.Say("Nothing is erased without a question, and there is no terminal to ask on; --yes leaves it out !");
    return false;
  }
  const std::string question = arguments.address + ": take it out of all collections and reports for good ?";
  return platform.boxes.Show(question, kProductCaption, BoxIcon::kExclamation, BoxButtons::kYesNo) == BoxAnswer::kYes;
}

}  // namespace

int Erase(Invocation& invocation, const EraseArguments& arguments) {
  const Result<Platform> opened = OpenHome(invocation);
  if (!opened.ok()) return invocation.Fail(opened.status());
  const Platform& platform = opened.value();
  const auto address = SuppressionEntry(arguments.address, platform.idna);
  if (!address || address->find('@') == std::string::npos || address->front() == '@') {
    invocation.Say(arguments.address + " is not an e-mail address !");
    return kExitUsage;
  }
  if (!IsConfirmed(invocation, platform, arguments)) return kExitFailed;
  SuppressionList only;
  (void)only.Add(*address);
  const Installation installation = invocation.installation();
  const Status made = MakeFolders(platform.files, installation.program_folder, installation.separator);
  if (!made.ok()) return invocation.Fail(made);
  if (arguments.suppress) {
    const Status suppressed = SuppressByDigest(platform.files, platform.idna, installation, {*address});
    if (!suppressed.ok()) return invocation.Fail(suppressed);
  }
  return EraseAndTell(invocation, platform, only, *address);
}

}  // namespace quenlar
