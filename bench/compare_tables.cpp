// Duplicate tests: the link queue, the level-0 host test and the found-address table against hash sets and a bare
// arena. usage: compare_tables KEYS ROUNDS
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unordered_set>

#include <boost/unordered/unordered_flat_set.hpp>

#include "bench/table.h"
#include "state/run_state.h"

namespace quenlar::bench {
namespace {

// Text in one arena, 32-bit offsets in an open table: the least that a duplicate test can be.
class Arena {
 public:
  bool Add(std::string_view key) {
    if ((count_ + 1) * 10 > slots_.size() * 7) Grow();
    std::size_t slot = Hash(key) & (slots_.size() - 1);
    while (slots_[slot] != 0) {
      if (At(slots_[slot]) == key) return false;
      slot = (slot + 1) & (slots_.size() - 1);
    }
    slots_[slot] = static_cast<std::uint32_t>(text_.size()) + 1;
    const auto length = static_cast<std::uint16_t>(key.size());
    text_.append(reinterpret_cast<const char*>(&length), 2).append(key);
    ++count_;
    return true;
  }
  [[nodiscard]] std::size_t Bytes() const { return text_.capacity() + slots_.capacity() * 4; }

 private:
  static std::size_t Hash(std::string_view key) { return std::hash<std::string_view>()(key); }
  [[nodiscard]] std::string_view At(std::uint32_t slot) const {
    std::uint16_t length;
    std::memcpy(&length, text_.data() + slot - 1, 2);
    return {text_.data() + slot + 1, length};
  }
  void Grow() {
    std::vector<std::uint32_t> old(slots_.empty() ? 1024 : slots_.size() * 2);
    old.swap(slots_);
    for (const std::uint32_t entry : old) {
      if (entry == 0) continue;
      std::size_t slot = Hash(At(entry)) & (slots_.size() - 1);
      while (slots_[slot] != 0) slot = (slot + 1) & (slots_.size() - 1);
      slots_[slot] = entry;
    }
  }
  std::string text_;
  std::vector<std::uint32_t> slots_;
  std::size_t count_ = 0;
};

std::string Key(std::size_t i) {
  const std::size_t spread = i * 2654435761u % 1000003;
  return "http://www.site" + std::to_string(i % 5000) + ".example/folder" + std::to_string(spread) + "/" +
         std::to_string(i) + ".html";
}

void Run(std::size_t keys, int rounds) {
  std::vector<std::string> links, hosts, addresses;
  for (std::size_t i = 0; i < keys; ++i) {
    links.push_back(Key(i));
    hosts.push_back("http://www.site" + std::to_string(i) + ".example/page.html");
    addresses.push_back("Person" + std::to_string(i) + ".Name@lists" + std::to_string(i % 977) + ".example.org");
  }
  const auto offer = [](const std::vector<std::string>& of, const auto& add) {
    for (int time = 0; time < 3; ++time) {
      for (const std::string& key : of) add(key);
    }
  };
  std::size_t arena_bytes = 0, link_bytes = 0, host_bytes = 0, found_bytes = 0;
  const auto timings = Compare({{"bare arena table (the limit)",
                                 [&] {
                                   Arena a;
                                   offer(links, [&](const auto& k) { a.Add(k); });
                                   arena_bytes = a.Bytes();
                                 }},
                                {"link queue, exact",
                                 [&] {
                                   LinkQueue q;
                                   offer(links, [&](const auto& k) { q.AddIfNew(k); });
                                   link_bytes = q.MemoryBytes();
                                 }},
                                {"link queue, one a host",
                                 [&] {
                                   LinkQueue q;
                                   offer(hosts, [&](const auto& k) { q.AddIfNewHost(k); });
                                   host_bytes = q.MemoryBytes();
                                 }},
                                {"found-address table",
                                 [&] {
                                   FoundAddresses f;
                                   FoundAddresses::PageTexts page{"http://www.a.example/", "A title"};
                                   offer(addresses, [&](const auto& k) { f.AddIfNew(page, k, false); });
                                   found_bytes = f.MemoryBytes();
                                 }},
                                {"Boost flat set of strings",
                                 [&] {
                                   boost::unordered_flat_set<std::string> s;
                                   offer(links, [&](const auto& k) { s.insert(k); });
                                 }},
                                {"std::unordered_set of strings",
                                 [&] {
                                   std::unordered_set<std::string> s;
                                   offer(links, [&](const auto& k) { s.insert(k); });
                                 }}},
                               rounds);
  std::printf(
      "\n### %zu keys of 30 to 60 bytes, three offers a key\n\n| table | ns an offer | times the bare arena "
      "|\n|---|---|---|\n",
      keys);
  for (const Timing& t : timings) {
    std::printf("| %s | %.0f | %.2f (%.2f to %.2f) |\n", t.name.c_str(),
                t.median * 1e9 / (3.0 * static_cast<double>(keys)), t.ratio, t.ratio_lowest, t.ratio_highest);
  }
  const auto a_key = [&](std::size_t bytes) { return static_cast<double>(bytes) / static_cast<double>(keys); };
  std::printf(
      "\nBytes a key, text included: bare arena %.0f, link queue %.0f, one a host %.0f, found addresses %.0f.\n",
      a_key(arena_bytes), a_key(link_bytes), a_key(host_bytes), a_key(found_bytes));
  const std::string of = "duplicate tests, " + std::to_string(keys) + " keys: ";
  PrintGoal(of + "link queue, times the bare arena's time", 1.5, timings[1].ratio, false);
  PrintGoal(of + "one a host, times the bare arena's time", 1.5, timings[2].ratio, false);
  PrintGoal(of + "found addresses, times the bare arena's time", 1.5, timings[3].ratio, false);
  PrintGoal(of + "link queue, times the bare arena's bytes", 1.5, a_key(link_bytes) / a_key(arena_bytes), false);
}

}  // namespace
}  // namespace quenlar::bench

int main(int argc, char** argv) {
  if (argc != 3) return std::fprintf(stderr, "usage: compare_tables KEYS ROUNDS\n"), 2;
  quenlar::bench::Run(std::strtoull(argv[1], nullptr, 10), std::atoi(argv[2]));
}
