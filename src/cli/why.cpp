// quenlar why: why an address is (or is not) listed, or a page was (not) visited.
#include "engine/why.h"

#include <string>

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/json_text.h"
#include "cli/load_suppression.h"
#include "cli/open_collection.h"
#include "cli/workplace.h"
#include "platform/platform.h"

namespace quenlar {
namespace {

constexpr std::size_t kMostPlaces = 20;  // of an address that are printed as sentences

// What is not known has no member.
Json FactsOf(const WhyAnswer& answer) {
  Json line;
  if (!answer.address.empty()) line["address"] = answer.address;
  if (!answer.page.empty()) line["page"] = answer.page;
  line["state"] = answer.state;
  if (answer.facts) line["depth"] = answer.facts->depth;
  if (!answer.reason.empty()) line["reason"] = answer.reason;
  if (!answer.rule.empty()) line["rule"] = answer.rule;
  if (answer.facts && answer.facts->line > 0) line["line"] = answer.facts->line;
  if (answer.facts && answer.facts->status > 0) line["status"] = answer.facts->status;
  if (answer.facts && !answer.facts->parent.empty()) line["parent"] = answer.facts->parent;
  return line;
}

}  // namespace

int Why(Invocation& invocation, const WhyArguments& arguments) {
  const auto reader = OpenCollection(invocation, arguments.name);
  if (!reader.ok()) return invocation.Fail(reader.status());
  const Result<Platform> platform = OpenHome(invocation);
  if (!platform.ok()) return invocation.Fail(platform.status());
  SuppressionList suppression;
  if (AsksForAddress(arguments.what)) {
    Result<SuppressionList> loaded = LoadSuppression(invocation, platform.value());
    if (!loaded.ok()) return invocation.Fail(loaded.status());
    suppression = loaded.take();
  }
  const Result<WhyAnswer> answer =
      Why(*reader.value(), suppression, platform.value().idna, arguments.what, kMostPlaces);
  if (!answer.ok()) return invocation.Fail(answer.status());
  if (!answer.value().definite) {
    for (const std::string& sentence : answer.value().sentences) invocation.Say(sentence);
    return kExitFailed;
  }
  if (arguments.format == "jsonl") {
    std::string line = JsonLine(FactsOf(answer.value()));
    line.pop_back();  // Print adds it
    invocation.Print(line);
    return kExitDone;
  }
  for (const std::string& sentence : answer.value().sentences) {
    if (!invocation.Print(sentence)) break;
  }
  return kExitDone;
}

}  // namespace quenlar
