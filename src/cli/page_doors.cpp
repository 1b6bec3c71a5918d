#include "cli/page_doors.h"

#include <optional>
#include <string>

#include <fmt/format.h>

#include "base/windows1252.h"
#include "cli/base64.h"
#include "page/robots.h"
#include "page/site.h"
#include "page/url.h"
#include "page/url_host.h"

namespace quenlar {
namespace {

using Request = nlohmann::json;

Json Wrong(std::string message) { return {{"error", std::move(message)}}; }

Json NotText(const char* member) { return Wrong(fmt::format("\"{}\" must be a text", member)); }

// The text of a member, or null where it is not a text.
const std::string* TextOf(const Request& request, const char* member) {
  const auto found = request.find(member);
  return found == request.end() ? nullptr : found->get_ptr<const std::string*>();
}

Json AnswerUrl(const Request& request, const Idna& idna) {
  const std::string* text = TextOf(request, "url");
  if (!text) return NotText("url");
  std::optional<Url> base;
  if (const auto given = request.find("base"); given != request.end() && !given->is_null()) {
    if (!given->is_string()) return Wrong("\"base\" must be a text or null");
    base = ParseUrl(given->get_ref<const std::string&>(), nullptr, idna);
  }
  const std::optional<Url> url = ParseUrl(*text, base ? &*base : nullptr, idna);
  return {{"url", url ? Json(url->href()) : Json(nullptr)}};
}

Json AnswerSite(const Request& request, const Idna& idna) {
  const std::string* name = TextOf(request, "site");
  if (!name) return NotText("site");
  std::string host;
  const bool is_host = AppendHost(*name, idna, host);
  const std::string_view site = is_host ? RegistrableDomain(host) : std::string_view();
  return {{"site", site.empty() ? Json(nullptr) : Json(std::string(site))}};
}

// What would be asked for. An address with bytes beyond ASCII is one that nobody can ask for as it is: it is compared
// as it stands.
std::string TargetOf(const std::string& text, const Url& url) {
  const std::size_t host = text.find("//");
  if (IsAscii(text) || host == text.npos) return std::string(url.target());
  const std::size_t path = text.find_first_of("/?", host + 2);
  if (path == text.npos) return std::string(url.target());
  const std::string target = text.substr(path, text.find('#', path) - path);
  return target.front() == '/' ? target : "/" + target;
}

Json AnswerRobots(const Request& request, const Idna& idna) {
  const std::string* agent = TextOf(request, "agent");
  const std::string* address = TextOf(request, "url");
  if (!agent) return NotText("agent");
  if (!address) return NotText("url");
  std::optional<std::string> body;
  if (request.contains("robots_body")) {
    const std::string* encoded = TextOf(request, "robots_body");
    if (encoded) body = DecodeBase64(*encoded);
    if (!body) return Wrong("\"robots_body\" must be base64");
  } else {
    const std::string* text = TextOf(request, "robots");
    if (!text) return NotText("robots");
    body = *text;
  }
  const std::optional<Url> url = ParseUrl(*address, nullptr, idna);
  if (!url) return Wrong("\"url\" must be an http or https address");
  const RobotsRules rules(*body, *agent);
  const RobotsRules::Verdict verdict = rules.Check(TargetOf(*address, *url));
  return {{"allowed", verdict.allowed},
          {"line", verdict.line ? Json(*verdict.line) : Json(nullptr)},
          {"delay", rules.delay() ? Json(*rules.delay()) : Json(nullptr)},
          {"sitemaps", rules.sitemaps()}};
}

struct Door {
  std::string_view members;
  PageDoor answer;
};
constexpr Door kDoors[] = {
    {"url", AnswerUrl},
    {"base url", AnswerUrl},
    {"site", AnswerSite},
    {"agent robots url", AnswerRobots},
    {"agent robots_body url", AnswerRobots},
};

}  // namespace

PageDoor FindPageDoor(std::string_view members) {
  for (const Door& door : kDoors) {
    if (door.members == members) return door.answer;
  }
  return nullptr;
}

}  // namespace quenlar
