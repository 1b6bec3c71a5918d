// The public suffix list as a tree of labels, read from the last label to the first. make_site_table.cpp writes the
// tree when the program is built.
#pragma once

#include <cstdint>
#include <span>

namespace quenlar {

enum SiteRule : std::uint8_t {
  kNoRule = 0,
  kSuffixRule = 1,     // the labels from the root to here are a public suffix
  kExceptionRule = 2,  // they are a registrable domain, although "*" stands beside the last of them
};

// The children of a node lie side by side, in the order of their labels' bytes.
struct SiteNode {
  std::uint32_t label;  // where its text begins in site_table::Labels()
  std::uint16_t first_child, children;
  std::uint8_t label_bytes;
  std::uint8_t rule;
};

namespace site_table {

// The first node is the root.
[[nodiscard]] std::span<const SiteNode> Nodes();
[[nodiscard]] const char* Labels();

}  // namespace site_table

}  // namespace quenlar
