// Seeded hash values of texts. The author of a page does not know the seed, so no page can fill one slot of a table
// with its texts and make it slow.
#pragma once

#include <cstdint>
#include <cstring>
#include <random>
#include <string_view>

namespace quenlar {

// A hash function. Copies give the same values. Values differ from one start of the program to the next.
class TextHash {
 public:
  // Takes the seed that all tables of the program share. Drawing a fresh one costs more than a small table.
  TextHash() {
    static const std::uint64_t seed = std::random_device{}();
    *this = TextHash(seed);
  }
  explicit TextHash(std::uint64_t seed) : seed_(Mix(seed ^ kFirst, 0xD6E8FEB86659FD93u)) {}

  // The same value for the same text.
  [[nodiscard]] std::uint32_t Exact(std::string_view text) const {
    return Run(text, [](std::uint64_t word) { return word; });
  }
  // The same value for texts that differ only in ASCII letter case. Made for e-mail addresses: it sets the bit that
  // makes a capital small in every character, and no two other characters of an address become the same by that.
  [[nodiscard]] std::uint32_t IgnoringCase(std::string_view address) const {
    return Run(address, [](std::uint64_t word) { return word | 0x2020202020202020u; });
  }

 private:
  static std::uint64_t Mix(std::uint64_t a, std::uint64_t b) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
  }

  // One factor for each of the two lanes and one for the end. They are odd numbers with well mixed bits, nothing more.
  static constexpr std::uint64_t kFirst = 0x9E3779B97F4A7C15u;
  static constexpr std::uint64_t kSecond = 0xA0761D6478BD642Fu;
  static constexpr std::uint64_t kLast = 0xE7037ED1A0B428DBu;

  template <typename Word>
  static std::uint64_t Load(const char* from) {
    Word word = 0;
    std::memcpy(&word, from, sizeof word);
    return word;
  }
  // Fewer than eight bytes as one word.
  static std::uint64_t LoadShort(const char* from, std::size_t size) {
    if (size >= 4) return Load<std::uint32_t>(from) | Load<std::uint32_t>(from + size - 4) << 32;
    if (size == 0) return 0;
    return Load<std::uint8_t>(from) | Load<std::uint8_t>(from + size / 2) << 8 |
           Load<std::uint8_t>(from + size - 1) << 16;
  }

  // Two lanes take eight bytes each in turn. The last eight bytes may overlap the ones before them, so that no shorter
  // rest has to be handled.
  template <typename Fold>
  std::uint32_t Run(std::string_view text, Fold fold) const {
    const char* at = text.data();
    std::size_t left = text.size();
    std::uint64_t first = seed_ ^ left;
    if (left < 8) {
      first = Mix(first ^ fold(LoadShort(at, left)), kFirst);
    } else {
      std::uint64_t second = seed_;
      for (; left > 16; at += 16, left -= 16) {
        first = Mix(first ^ fold(Load<std::uint64_t>(at)), kFirst);
        second = Mix(second ^ fold(Load<std::uint64_t>(at + 8)), kSecond);
      }
      if (left > 8) first = Mix(first ^ fold(Load<std::uint64_t>(at)), kFirst);
      second = Mix(second ^ fold(Load<std::uint64_t>(at + left - 8)), kSecond);
      first ^= second;
    }
    first = Mix(first ^ seed_, kLast);
    return static_cast<std::uint32_t>(first ^ (first >> 32));
  }

  std::uint64_t seed_ = 0;
};

}  // namespace quenlar
