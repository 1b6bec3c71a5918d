#include "page/site.h"

#include <cstddef>

#include "page/site_table.h"
#include "platform/ip_address.h"

namespace quenlar {
namespace {

std::string_view LabelOf(const SiteNode& node) { return {site_table::Labels() + node.label, node.label_bytes}; }

const SiteNode* Child(const SiteNode& parent, std::string_view label) {
  const SiteNode* nodes = site_table::Nodes().data();
  std::size_t low = parent.first_child, high = low + parent.children;
  while (low < high) {
    const std::size_t middle = (low + high) / 2;
    const int order = LabelOf(nodes[middle]).compare(label);
    if (order == 0) return &nodes[middle];
    if (order < 0) low = middle + 1;
    if (order > 0) high = middle;
  }
  return nullptr;
}

// Where the label before the one at `begin` begins. Nothing is before the label at 0.
std::size_t LabelBefore(std::string_view host, std::size_t begin) {
  const std::size_t dot = begin < 2 ? host.npos : host.rfind('.', begin - 2);
  return dot == host.npos ? 0 : dot + 1;
}

// Where the public suffix begins: the rule with the most labels decides, an exception before all others; without a rule
// the suffix is the last label.
std::size_t SuffixBegin(std::string_view host) {
  std::size_t end = host.size(), begin = LabelBefore(host, host.size() + 1);
  std::size_t suffix = begin;
  const SiteNode* node = &site_table::Nodes().front();
  for (;;) {
    const SiteNode* child = Child(*node, host.substr(begin, end - begin));
    if (child && child->rule == kExceptionRule) return end + 1;
    if ((child && child->rule == kSuffixRule) || Child(*node, "*")) suffix = begin;
    if (!child || begin == 0) return suffix;
    node = child;
    end = begin - 1;
    begin = LabelBefore(host, begin);
  }
}

}  // namespace

std::string_view RegistrableDomain(std::string_view host) {
  if (host.ends_with('.')) host.remove_suffix(1);
  if (host.empty() || host.front() == '.' || host.back() == '.' || host.find("..") != host.npos) return {};
  if (ParseIpAddress(host)) return {};
  const std::size_t suffix = SuffixBegin(host);
  return suffix == 0 ? std::string_view() : host.substr(LabelBefore(host, suffix));
}

bool IsTopLevelDomain(std::string_view label) { return Child(site_table::Nodes().front(), label) != nullptr; }

}  // namespace quenlar
