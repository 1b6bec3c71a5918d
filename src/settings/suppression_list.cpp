#include "settings/suppression_list.h"

#include <algorithm>

#include "base/ascii.h"
#include "platform/sha256.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kDigestPrefix = "sha256:";
constexpr std::size_t kDigestDigits = 64;
constexpr std::size_t kLongestEntry = 1024;

bool IsHexDigit(char c) { return IsDigit(c) || (ToLower(c) >= 'a' && ToLower(c) <= 'f'); }
bool IsBeyondAscii(char c) { return static_cast<unsigned char>(c) >= 0x80; }

// Blanks, control characters, and what only stands around addresses. A "*" alone looks like a wish that the list does
// not know.
bool IsLocalPart(std::string_view text) {
  return !text.empty() && text != "*" && std::all_of(text.begin(), text.end(), [](char c) {
    return c > ' ' ? std::string_view("()<>[],;:\\\"@\x7F").find(c) == kNone : IsBeyondAscii(c);
  });
}

bool IsDomain(std::string_view text) {
  return !text.empty() && text.front() != '.' && text.back() != '.' && text.find("..") == kNone &&
         std::all_of(text.begin(), text.end(),
                     [](char c) { return IsLetter(c) || IsDigit(c) || c == '-' || c == '.'; });
}

}  // namespace

std::optional<std::string> SuppressionEntry(std::string_view text, const Idna& idna) {
  if (text.size() > kLongestEntry) return std::nullopt;
  if (StartsWithIgnoreCase(text, kDigestPrefix)) {
    const std::string_view digits = text.substr(kDigestPrefix.size());
    if (digits.size() != kDigestDigits || !std::all_of(digits.begin(), digits.end(), IsHexDigit)) return std::nullopt;
    return Lower(text);
  }
  const std::size_t sign = text.rfind('@');
  if (sign == kNone) return std::nullopt;
  const std::string_view local = text.substr(0, sign);
  std::string domain(text.substr(sign + 1));
  if (std::any_of(domain.begin(), domain.end(), IsBeyondAscii)) {
    Result<std::string> ascii = idna.ToAscii(domain);
    if (!ascii.ok()) return std::nullopt;
    domain = ascii.take();
  }
  if (!IsDomain(domain) || (!local.empty() && !IsLocalPart(local))) return std::nullopt;
  return Lower(local) + "@" + Lower(domain);
}

std::string DigestEntry(std::string_view address) { return std::string(kDigestPrefix) + Sha256Hex(Lower(address)); }

bool SuppressionList::Add(std::string_view entry) {
  if (Has(entry)) return false;
  index_.MakeRoom();
  entries_.push_back(texts_.Keep(entry));
  index_.Insert(hash_.IgnoringCase(entry), static_cast<std::uint32_t>(entries_.size() - 1));
  has_digests_ = has_digests_ || entry.starts_with(kDigestPrefix);
  return true;
}

bool SuppressionList::Has(std::string_view entry) const {
  return index_.Contains(hash_.IgnoringCase(entry),
                         [&](std::uint32_t number) { return EqualsIgnoreCase(entries_[number], entry); });
}

std::string SuppressionList::Digest() const {
  if (entries_.empty()) return {};
  std::string lines;
  for (const std::string_view entry : entries_) lines.append(entry) += '\n';
  return Sha256Hex(lines);
}

std::optional<std::string> SuppressionList::EntryFor(std::string_view address) const {
  if (entries_.empty()) return std::nullopt;
  if (Has(address)) return Lower(address);
  const std::size_t sign = address.rfind('@');
  if (sign != kNone && Has(address.substr(sign))) return Lower(address.substr(sign));
  if (!has_digests_) return std::nullopt;
  std::string digest = DigestEntry(address);
  return Has(digest) ? std::optional(std::move(digest)) : std::nullopt;
}

}  // namespace quenlar
