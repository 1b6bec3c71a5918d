#include "cli/page_functions.h"

#include <optional>
#include <string>

#include <fmt/format.h>

#include "base/windows1252.h"
#include "cli/base64.h"
#include "page/page_reader.h"
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

// What a request is about: the text of one member, or the bytes of another in base64.
struct Contents {
  std::optional<std::string> bytes;
  bool is_text = false;
  Json error;  // without bytes
};

Contents ContentsOf(const Request& request, const char* text_member, const char* base64_member) {
  if (!request.contains(base64_member)) {
    const std::string* text = TextOf(request, text_member);
    return text ? Contents{*text, true, {}} : Contents{{}, true, NotText(text_member)};
  }
  const std::string* encoded = TextOf(request, base64_member);
  std::optional<std::string> bytes = encoded ? DecodeBase64(*encoded) : std::nullopt;
  if (!bytes) return {{}, false, Wrong(fmt::format("\"{}\" must be base64", base64_member))};
  return {std::move(bytes), false, {}};
}

Json AnswerUrl(const Request& request, const Platform& platform) {
  const std::string* text = TextOf(request, "url");
  if (!text) return NotText("url");
  std::optional<Url> base;
  if (const auto given = request.find("base"); given != request.end() && !given->is_null()) {
    if (!given->is_string()) return Wrong("\"base\" must be a text or null");
    base = ParseUrl(given->get_ref<const std::string&>(), nullptr, platform.idna);
  }
  const std::optional<Url> url = ParseUrl(*text, base ? &*base : nullptr, platform.idna);
  return {{"url", url ? Json(url->href()) : Json(nullptr)}};
}

Json AnswerSite(const Request& request, const Platform& platform) {
  const std::string* name = TextOf(request, "site");
  if (!name) return NotText("site");
  std::string host;
  const bool is_host = AppendHost(*name, platform.idna, host);
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

Json AnswerRobots(const Request& request, const Platform& platform) {
  const std::string* agent = TextOf(request, "agent");
  const std::string* address = TextOf(request, "url");
  if (!agent) return NotText("agent");
  if (!address) return NotText("url");
  Contents body = ContentsOf(request, "robots", "robots_body");
  if (!body.bytes) return std::move(body.error);
  const std::optional<Url> url = ParseUrl(*address, nullptr, platform.idna);
  if (!url) return Wrong("\"url\" must be an http or https address");
  const RobotsRules rules(*body.bytes, *agent);
  const RobotsRules::Verdict verdict = rules.Check(TargetOf(*address, *url));
  return {{"allowed", verdict.allowed},
          {"line", verdict.line ? Json(*verdict.line) : Json(nullptr)},
          {"delay", rules.delay() ? Json(*rules.delay()) : Json(nullptr)},
          {"sitemaps", rules.sitemaps()}};
}

Json LinkJson(const PageLink& link) {
  return {{"url", link.url}, {"from", LinkSourceName(link.from)}, {"follow", link.follow == LinkFollow::kFollowed}};
}

Json AddressJson(const PageAddress& address) {
  return {{"address", address.address}, {"written", address.written}, {"place", PlaceName(address.place)}};
}

Json AnswerRead(const Request& request, const Platform& platform) {
  Contents page = ContentsOf(request, "read", "read_body");
  if (!page.bytes) return std::move(page.error);
  const std::string* address = TextOf(request, "page");
  if (!address) return NotText("page");
  const std::optional<Url> url = ParseUrl(*address, nullptr, platform.idna);
  if (!url) return Wrong("\"page\" must be an http or https address");
  ReadRequest read;
  read.body = *page.bytes;
  read.body_is_utf8 = page.is_text;
  read.url = &*url;
  if (request.contains("content_type")) {
    const std::string* type = TextOf(request, "content_type");
    if (!type) return NotText("content_type");
    read.content_type = *type;
  }
  if (const auto decode = request.find("decode_protected"); decode != request.end()) {
    if (!decode->is_boolean()) return Wrong("\"decode_protected\" must be true or false");
    read.decode_protected = decode->get<bool>();
  }
  const ReadResult result = ReadPage(read, platform.idna, platform.text_decoder);
  Json links = Json::array(), addresses = Json::array();
  for (const PageLink& link : result.links) links.push_back(LinkJson(link));
  for (const PageAddress& found : result.addresses) addresses.push_back(AddressJson(found));
  return {{"title", result.title ? Json(*result.title) : Json(nullptr)},
          {"base", result.base},
          {"links", std::move(links)},
          {"addresses", std::move(addresses)},
          {"protected", result.protected_addresses},
          {"robots", result.robots.words()}};
}

struct Row {
  std::string_view members;
  PageFunction answer;
};
constexpr Row kFunctions[] = {
    {"url", AnswerUrl},
    {"base url", AnswerUrl},
    {"site", AnswerSite},
    {"agent robots url", AnswerRobots},
    {"agent robots_body url", AnswerRobots},
    {"page read", AnswerRead},
    {"page read_body", AnswerRead},
    {"content_type page read", AnswerRead},
    {"content_type page read_body", AnswerRead},
    {"decode_protected page read", AnswerRead},
    {"decode_protected page read_body", AnswerRead},
    {"content_type decode_protected page read", AnswerRead},
    {"content_type decode_protected page read_body", AnswerRead},
};

}  // namespace

PageFunction FindPageFunction(std::string_view members) {
  for (const Row& row : kFunctions) {
    if (row.members == members) return row.answer;
  }
  return nullptr;
}

}  // namespace quenlar
