#include "support/reference_links.h"

#include <algorithm>

#include "base/ascii.h"

namespace quenlar {
namespace {

std::vector<std::string> Pieces(const std::string& text, const std::string& separator) {
  std::vector<std::string> pieces;
  std::string rest = text;
  for (;;) {
    const std::size_t at = rest.find(separator);
    pieces.push_back(rest.substr(0, at));
    if (at == std::string::npos) return pieces;
    rest = rest.substr(at + separator.size());
  }
}

std::string Replaced(std::string text, const std::string& needle, const std::string& replacement) {
  std::size_t at = 0;
  while ((at = text.find(needle, at)) != std::string::npos) {
    text.replace(at, needle.size(), replacement);
    at += replacement.size();
  }
  return text;
}

std::string Trimmed(std::string text) {
  while (!text.empty() && text.front() == ' ') text.erase(0, 1);
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

bool Holds(const std::string& text, const std::string& needle) { return text.find(needle) != std::string::npos; }

bool Begins(const std::string& text, const std::string& lower_prefix) {
  return Lower(text).substr(0, lower_prefix.size()) == lower_prefix;
}

}  // namespace

std::string ReferenceHost(const std::string& address) {
  const std::string whole = Begins(address, "http://") ? address : "http://" + address;
  return "http://" + Pieces(whole.substr(7), "/").front();
}

std::string ReferenceResolve(std::string target, const std::string& page) {
  bool up = false;
  while (target.substr(0, 3) == "../") {
    target = target.substr(3);
    up = true;
  }
  if (target.substr(0, 1) == "/") return ReferenceHost(page) + target;
  if (Begins(target, "javascript:")) return "";
  if (target.substr(0, 1) == "#") {
    std::string rebuilt;
    for (const std::string& piece : Pieces(page, "/")) rebuilt += piece + "/";
    return rebuilt + target;
  }
  if (Begins(target, "mailto:")) return "";
  if (Begins(target, "http://")) return Holds(target.substr(7), "/") ? target : target + "/";
  if (target.empty()) return "";
  if (up) return ReferenceHost(page) + "/" + target;
  if (page == ReferenceHost(page)) return page + "/" + target;
  const std::size_t hosted = Lower(page).find("/hosted/");
  if (hosted != std::string::npos) return page.substr(0, hosted + 8) + target;
  const std::vector<std::string> pieces = Pieces(page, "/");
  std::string folder;
  for (std::size_t i = 0; i + 1 < pieces.size(); ++i) folder += pieces[i] + "/";
  return folder + target;
}

std::string ReferenceAttribute(const std::string& tag, const std::string& name) {
  const std::size_t at = Lower(tag).find(name);
  if (at == std::string::npos) return "";
  std::string value = tag.substr(at + name.size());
  for (const std::string quote : {"\"", "'"}) {
    if (value.substr(0, 1) == quote) {
      value = Pieces(value, quote)[1];
      break;
    }
  }
  value = Pieces(value, " ").front();
  value = Pieces(value, "\r\n").front();
  return Trimmed(Replaced(value, "amp;", ""));
}

std::string ReferenceClean(const std::string& text) {
  std::string clean;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80 && byte < 0xC0) continue;  // the rest of a character that has its blank
    clean += byte < 33 || byte >= 127 ? ' ' : c;
  }
  const std::pair<const char*, const char*> kEntities[] = {{"&#9733;", "\u2605"}, {"&#8250;", ">"}, {"&laquo;", "<<"},
                                                           {"&amp;", "&"},        {"&#038;", "&"},  {"&#38;", "&"},
                                                           {"&#10;", " "},        {"&gt;", ">"},    {"&nbsp;", " "}};
  for (const auto& [entity, replacement] : kEntities) clean = Replaced(clean, entity, replacement);
  return Trimmed(clean);
}

void ReferenceQueues::MakeLink(std::string address, const std::string& page, const std::string& digit) {
  const std::string lower = Lower(address);
  if (Holds(address, "/#") || Holds(lower, "microsoft") || Holds(lower, "wikipedia.org") || Holds(lower, "https://"))
    return;
  if (!address.empty() && address.back() == '/') address.pop_back();
  if (ReferenceHost(address) != ReferenceHost(page)) return OtherSite(address);
  const std::size_t level = std::string("1234567890").find(digit);
  if (digit.size() == 1 && level != std::string::npos) SameSite(levels[level + 1], address, 1);
}

void ReferenceQueues::MakeExpandLink(int level, std::string address, const std::string& page, std::int16_t number) {
  if (Holds(address, "/#")) return;
  if (Holds(Lower(address), "microsoft") || Holds(Lower(address), "https://")) return;
  if (!address.empty() && address.back() == '/') address.pop_back();
  if (ReferenceHost(address) != ReferenceHost(page)) return OtherSite(address);
  SameSite(levels[static_cast<std::size_t>(level)], address, static_cast<std::int16_t>(number + 1));
}

void ReferenceQueues::AddResult(std::string target) {
  if (Holds(target, "google.")) return;
  if (HasHost(target)) return;
  if (!target.empty() && target.back() == '/') target.pop_back();
  levels[0].push_back({target, 1});
}

bool ReferenceQueues::HasHost(const std::string& address) const {
  return std::any_of(levels[0].begin(), levels[0].end(),
                     [&](const ReferenceLink& link) { return ReferenceHost(link.url) == ReferenceHost(address); });
}

void ReferenceQueues::OtherSite(const std::string& address) {
  if (!is_keyword && correlation_mode != 1) return;
  if (!HasHost(address)) levels[0].push_back({address, 1});
}

void ReferenceQueues::SameSite(std::vector<ReferenceLink>& queue, const std::string& address, std::int16_t number) {
  for (const ReferenceLink& link : queue) {
    if (link.url == address) return;
  }
  queue.push_back({address, number});
}

}  // namespace quenlar
