#include "cli/load_suppression.h"

#include <string>
#include <vector>

#include "settings/suppression_file.h"

namespace quenlar {

Result<SuppressionList> LoadSuppression(Invocation& invocation, const Platform& platform) {
  if (invocation.choice().home.empty()) return SuppressionList();
  std::vector<std::string> messages;
  Result<SuppressionList> list =
      LoadSuppressionList(platform.files, platform.idna, invocation.installation(), messages);
  for (const std::string& message : messages) invocation.Say(message);
  return list;
}

}  // namespace quenlar
