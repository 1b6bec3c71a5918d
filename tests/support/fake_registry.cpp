#include "support/fake_registry.h"

#include "base/ascii.h"

namespace quenlar {
namespace {

constexpr std::size_t kMaxCharacters = 254;

std::string FirstCharacters(const std::string& text) {
  std::size_t characters = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool starts_character = (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
    if (starts_character && ++characters > kMaxCharacters) return text.substr(0, at);
  }
  return text;
}

}  // namespace

void FakeRegistry::SaveRegValue(const std::string& key, const std::string& name, const std::string& text) {
  ++changes_;
  if (CallFails() || read_only_) return;
  const std::string lower = Lower(key);
  for (std::size_t at = lower.find('\\'); at != std::string::npos; at = lower.find('\\', at + 1)) {
    keys_[lower.substr(0, at)];  // the keys above come into being too
  }
  keys_[lower][Lower(name)] = text;
}

std::string FakeRegistry::GetRegValue(const std::string& key, const std::string& name) const {
  if (CallFails() || !keys_.contains(Lower(key))) return "";
  const auto text = Stored(key, name);
  return text ? FirstCharacters(*text) : std::string(kMaxCharacters, ' ');
}

void FakeRegistry::DeleteRegKey(const std::string& key) {
  ++changes_;
  if (CallFails()) return;
  const std::string lower = Lower(key);
  const auto below = keys_.lower_bound(lower + "\\");
  const bool has_keys_below = below != keys_.end() && below->first.starts_with(lower + "\\");
  if (!read_only_ && !has_keys_below) keys_.erase(lower);
}

bool FakeRegistry::KeyExists(const std::string& key) const { return CallFails() || keys_.contains(Lower(key)); }

bool FakeRegistry::ValueExists(const std::string& key, const std::string& name) const {
  return !CallFails() && Stored(key, name).has_value();
}

Status FakeRegistry::Flush() {
  if (failing_flush_ <= 1) return flush_failure_;
  --failing_flush_;
  return Status::Ok();
}

void FakeRegistry::FailCall(int n, Fails fails) {
  failing_call_ = n;
  fails_ = fails;
  calls_ = 0;
}

bool FakeRegistry::CallFails() const {
  ++calls_;
  return failing_call_ != 0 && (fails_ == Fails::kOnce ? calls_ == failing_call_ : calls_ >= failing_call_);
}

std::map<std::string, std::string> FakeRegistry::ValuesOf(const std::string& key) const {
  const auto found = keys_.find(Lower(key));
  return found == keys_.end() ? std::map<std::string, std::string>() : found->second;
}

std::optional<std::string> FakeRegistry::Stored(const std::string& key, const std::string& name) const {
  const auto values = keys_.find(Lower(key));
  if (values == keys_.end()) return std::nullopt;
  const auto value = values->second.find(Lower(name));
  return value == values->second.end() ? std::nullopt : std::optional(value->second);
}

}  // namespace quenlar
