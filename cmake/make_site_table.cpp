// Turns the public suffix list into C++ source: the tree that page/site_table.h describes. A program of the machine
// that builds. usage: make_site_table LIST OUTPUT
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/ascii.h"
#include "page/site_table.h"
#include "platform/punycode.h"

namespace quenlar {
namespace {

struct Node {
  std::map<std::string, Node> children;
  SiteRule rule = kNoRule;
};

// The label in the form in which hosts have it; empty where it is not a label.
std::string AsciiLabel(std::string_view label) {
  for (const char c : label) {
    if (static_cast<signed char>(c) < 0) return PunycodeLabel(label).value_or("");
  }
  return Lower(label);
}

// False where the line is not a rule that the tree can hold.
bool AddRule(std::string_view rule, Node& root) {
  const bool exception = rule.starts_with('!');
  if (exception) rule.remove_prefix(1);
  const std::vector<std::string_view> labels = Split(rule, ".");
  Node* node = &root;
  for (std::size_t i = labels.size(); i-- > 0;) {
    const std::string label = AsciiLabel(labels[i]);
    // A "*" stands for the first label of a rule, and never for the only one.
    if (label.empty() || (label == "*" && (i > 0 || node == &root || exception))) return false;
    node = &node->children[label];
  }
  node->rule = exception ? kExceptionRule : kSuffixRule;
  return true;
}

bool ReadList(const char* path, Node& root) {
  std::ifstream list(path);
  std::size_t rules = 0;
  for (std::string line; std::getline(list, line);) {
    const std::string_view rule = std::string_view(line).substr(0, line.find_first_of(" \t\r"));
    if (rule.empty() || rule.starts_with("//")) continue;
    if (!AddRule(rule, root)) return false;
    ++rules;
  }
  return rules > 0;
}

// Nodes level by level, so that the children of each lie side by side.
void WriteTable(const Node& root, std::ostream& out) {
  struct Placed {
    std::string_view label;
    const Node* node;
  };
  std::vector<Placed> placed = {{"", &root}};
  std::map<std::string_view, std::size_t> places;  // of the labels' texts, each of them once
  std::size_t label_bytes = 0;
  out << "// Written by make_site_table.\n#include \"page/site_table.h\"\n\nnamespace quenlar::site_table {\nnamespace "
         "{\n\n"
      << "constexpr SiteNode kNodes[] = {\n";
  for (std::size_t i = 0; i < placed.size(); ++i) {
    const auto [label, node] = placed[i];
    const auto [place, added] = places.try_emplace(label, label_bytes);
    if (added) label_bytes += label.size();
    out << "{" << place->second << "," << placed.size() << "," << node->children.size() << "," << label.size() << ","
        << int{node->rule} << "},\n";
    for (const auto& [name, child] : node->children) placed.push_back({name, &child});
  }
  out << "};\n\nconstexpr char kLabels[] =\n";
  std::size_t written = 0;
  for (std::size_t i = 0; i < placed.size(); ++i) {
    if (places[placed[i].label] != written || placed[i].label.empty()) continue;
    out << "\"" << placed[i].label << "\"\n";
    written += placed[i].label.size();
  }
  out << ";\n\n}  // namespace\n\nstd::span<const SiteNode> Nodes() { return kNodes; }\n"
      << "const char* Labels() { return kLabels; }\n\n}  // namespace quenlar::site_table\n";
}

}  // namespace
}  // namespace quenlar

int main(int argc, char** argv) {
  quenlar::Node root;
  if (argc != 3 || !quenlar::ReadList(argv[1], root)) return EXIT_FAILURE;
  std::ofstream out(argv[2]);
  quenlar::WriteTable(root, out);
  return out.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}
