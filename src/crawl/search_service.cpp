#include "crawl/search_service.h"

#include <nlohmann/json.hpp>

#include "base/ascii.h"

namespace quenlar {
namespace {

std::string PercentEncoded(std::string_view text) {
  std::string encoded;
  for (const char c : text) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
                       c == '.' || c == '_' || c == '~';
    if (plain) {
      encoded += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    encoded += '%';
    encoded += kHexDigits[byte >> 4];
    encoded += kHexDigits[byte & 15];
  }
  return encoded;
}

// "unresponsive_engines" is a list of pairs: a name and a reason.
std::string EngineProblems(const nlohmann::json& reply) {
  std::string problems;
  const auto engines = reply.find("unresponsive_engines");
  if (engines == reply.end() || !engines->is_array()) return problems;
  for (const auto& engine : *engines) {
    if (!engine.is_array() || engine.size() < 2 || !engine[0].is_string() || !engine[1].is_string()) continue;
    problems += (problems.empty() ? "" : "; ") + engine[0].get<std::string>() + ": " + engine[1].get<std::string>();
  }
  return problems;
}

std::string ProblemOf(std::string_view service, const WebAnswer& answer) {
  const std::string name = "the search service at " + std::string(service);
  if (answer.failure != WebFailure::kNone) return name + " does not answer: " + answer.message;
  if (answer.head.status == 403) {
    return name + " refuses answers in JSON; add json to search.formats in its settings, or name another service";
  }
  if (answer.head.status == 429) return name + " has been asked too often; wait a while, or name another service";
  if (answer.head.status < 200 || answer.head.status > 299) {
    return name + " answers with status " + std::to_string(answer.head.status) + "; check its address";
  }
  return {};
}

}  // namespace

std::string SearchUrl(std::string_view service, std::string_view keyword, std::string_view language, int page) {
  std::string url(service);
  while (!url.empty() && url.back() == '/') url.pop_back();
  if (!url.ends_with("/search")) url += "/search";
  return url + "?q=" + PercentEncoded(keyword) + "&format=json&language=" + PercentEncoded(language) +
         "&pageno=" + std::to_string(page);
}

SearchReply ReadSearchAnswer(std::string_view service, const WebAnswer& answer) {
  SearchReply reply;
  reply.problem = ProblemOf(service, answer);
  reply.broken = !reply.problem.empty();
  if (reply.broken) return reply;
  // Depth is bounded by the body, and the parser does not call itself.
  const nlohmann::json parsed = nlohmann::json::parse(answer.body, nullptr, false);
  const auto results = parsed.is_object() ? parsed.find("results") : parsed.end();
  if (!parsed.is_object() || results == parsed.end() || !results->is_array()) {
    reply.broken = true;
    reply.problem = "the search service at " + std::string(service) +
                    " gives no results that can be read; name one with the SearXNG interface";
    return reply;
  }
  for (const auto& result : *results) {
    if (!result.is_object()) continue;
    const auto url = result.find("url");
    if (url != result.end() && url->is_string()) reply.urls.push_back(url->get<std::string>());
  }
  if (reply.urls.empty()) reply.problem = EngineProblems(parsed);
  return reply;
}

}  // namespace quenlar
