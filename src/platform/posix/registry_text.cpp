#include "platform/posix/registry_text.h"

#include <optional>

#include "base/ascii.h"

namespace quenlar {
namespace {

// `special` are the characters that would be misread where this text stands.
std::string Escape(std::string_view text, std::string_view special) {
  std::string escaped;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const auto byte = static_cast<unsigned char>(c);
    const bool blank_at_an_end = c == ' ' && (i == 0 || i + 1 == text.size());
    if (byte >= 0x20 && byte != 0x7F && c != '%' && !blank_at_an_end && special.find(c) == special.npos) {
      escaped += c;
    } else {
      escaped += PercentCode(c);
    }
  }
  return escaped;
}

std::optional<unsigned> HexadecimalDigit(char c) {
  if (IsDigit(c)) return static_cast<unsigned>(c - '0');
  const char lower = ToLower(c);
  if (lower >= 'a' && lower <= 'f') return static_cast<unsigned>(lower - 'a' + 10);
  return std::nullopt;
}

// A percent sign that does not begin an escape stands for itself, because people edit the file.
std::string Unescape(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto high = text[i] == '%' && i + 2 < text.size() ? HexadecimalDigit(text[i + 1]) : std::nullopt;
    const auto low = high ? HexadecimalDigit(text[i + 2]) : std::nullopt;
    if (low) {
      plain += static_cast<char>(*high * 16 + *low);
      i += 2;
    } else {
      plain += text[i];
    }
  }
  return plain;
}

}  // namespace

void RegistryContents::Save(const std::string& key, const std::string& name, const std::string& text) {
  for (std::size_t at = key.find('\\'); at != std::string::npos; at = key.find('\\', at + 1)) {
    const std::string above = key.substr(0, at);
    keys_.try_emplace(Lower(above), Key{above, {}});
  }
  Key& entry = keys_.try_emplace(Lower(key), Key{key, {}}).first->second;
  entry.values.try_emplace(Lower(name), Value{name, ""}).first->second.text = text;
}

void RegistryContents::Delete(const std::string& key) {
  const std::string lower = Lower(key);
  const auto below = keys_.lower_bound(lower + "\\");
  if (below == keys_.end() || !below->first.starts_with(lower + "\\")) keys_.erase(lower);
}

bool RegistryContents::HasKey(const std::string& key) const { return keys_.contains(Lower(key)); }

const std::string* RegistryContents::Find(const std::string& key, const std::string& name) const {
  const auto entry = keys_.find(Lower(key));
  if (entry == keys_.end()) return nullptr;
  const auto value = entry->second.values.find(Lower(name));
  return value == entry->second.values.end() ? nullptr : &value->second.text;
}

std::string RegistryContents::Format() const {
  std::string text = "# Settings of Quenlar, which rewrites this file whenever one of them changes.\n";
  for (const auto& [lower_path, key] : keys_) {
    text += "\n[" + Escape(key.path, "[]") + "]\n";
    for (const auto& [lower_name, value] : key.values) {
      text += Escape(value.name, "=#[") + "=" + Escape(value.text, "") + "\n";
    }
  }
  return text;
}

RegistryContents::Parsed RegistryContents::Parse(std::string_view text) {
  Parsed parsed;
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  Key* key = nullptr;
  for (std::string_view line : Split(text, "\n")) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = TrimBlanks(line);
    const std::size_t equals = line.find('=');
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '[' && line.back() == ']') {
      const std::string path = Unescape(line.substr(1, line.size() - 2));
      key = &parsed.contents.keys_.try_emplace(Lower(path), Key{path, {}}).first->second;
    } else if (key != nullptr && equals != line.npos) {
      const std::string name = Unescape(TrimBlanks(line.substr(0, equals)));
      key->values[Lower(name)] = {name, Unescape(TrimBlanks(line.substr(equals + 1)))};
    } else {
      parsed.damaged = true;
    }
  }
  return parsed;
}

}  // namespace quenlar
