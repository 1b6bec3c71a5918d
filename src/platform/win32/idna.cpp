#include "platform/win32/idna.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

#include "base/ascii.h"
#include "base/windows1252.h"
#include "platform/domain_labels.h"
#include "platform/punycode.h"
#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar {
namespace {

// Letters that IDNA 2003 writes as others or leaves out, and that stand for themselves today: sharp s, final sigma and
// the two joiners. The capital sharp s, at the end, is a sharp s.
constexpr std::wstring_view kKept = L"\u00DF\u03C2\u200C\u200D\u1E9E";

// Letter case, compatibility forms and what is refused, by the system's tables.
std::optional<std::wstring> Mapped(std::wstring_view text) {
  wchar_t mapped[1024];
  const int size =
      IdnToNameprepUnicode(0, text.data(), static_cast<int>(text.size()), mapped, static_cast<int>(std::size(mapped)));
  return size > 0 ? std::optional(std::wstring(mapped, static_cast<std::size_t>(size))) : std::nullopt;
}

std::optional<std::wstring> MappedLabel(std::wstring_view label) {
  std::wstring mapped;
  while (!label.empty()) {
    const std::size_t end = std::min(label.find_first_of(kKept), label.size());
    if (end > 0) {
      const auto piece = Mapped(label.substr(0, end));
      if (!piece) return std::nullopt;
      mapped += *piece;
    }
    if (end < label.size()) mapped += label[end] == kKept.back() ? kKept.front() : label[end];
    label.remove_prefix(std::min(end + 1, label.size()));
  }
  return mapped;
}

Result<std::string> CodeLabel(std::string_view label) {
  if (IsAscii(label)) return Lower(label);
  const Status refused(StatusKind::kFormat, std::string(label) + ": no host name");
  const auto mapped = MappedLabel(win32::ToWide(label));
  if (!mapped) return refused;
  const std::string text = win32::FromWide(*mapped);
  if (StartsWithIgnoreCase(text, "xn--")) return refused;
  if (IsAscii(text)) return Lower(text);
  auto coded = PunycodeLabel(text);
  return coded ? Result<std::string>(std::move(*coded)) : refused;
}

}  // namespace

Result<std::string> Win32Idna::ToAscii(std::string_view domain) const { return CodeLabels(domain, CodeLabel); }

}  // namespace quenlar
