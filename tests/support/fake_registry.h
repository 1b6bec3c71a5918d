// A settings registry in memory.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "platform/registry.h"

namespace quenlar {

// Key paths and value names ignore the case of letters, as the system's registry does. Can be made read-only, and fails
// on demand.
class FakeRegistry : public Registry {
 public:
  FakeRegistry() = default;
  FakeRegistry(const FakeRegistry&) = delete;
  FakeRegistry& operator=(const FakeRegistry&) = delete;

  void SaveRegValue(const std::string& key, const std::string& name, const std::string& text) override;
  [[nodiscard]] std::string GetRegValue(const std::string& key, const std::string& name) const override;
  void DeleteRegKey(const std::string& key) override;
  [[nodiscard]] bool KeyExists(const std::string& key) const override;
  [[nodiscard]] bool ValueExists(const std::string& key, const std::string& name) const override;
  Status Flush() override;

  // The n-th call of a member above from now on (1 is the next one) fails, or that one and all after it: a change is
  // without effect, a read gives no text, a value is not there, of a key nobody knows that it is missing. 0 fails none.
  // Also sets calls() to 0.
  enum class Fails { kOnce, kForGood };
  void FailCall(int n, Fails fails);
  [[nodiscard]] int calls() const { return calls_; }

  // From now on every write and delete is silently without effect.
  void SetReadOnly(bool read_only) { read_only_ = read_only; }
  // From now on Flush gives this: for the n-th time (1 is the next one), and ever after.
  void FailFlush(int n, Status why) {
    failing_flush_ = n;
    flush_failure_ = std::move(why);
  }
  // The whole stored text, not cut to 254 characters.
  [[nodiscard]] std::optional<std::string> Stored(const std::string& key, const std::string& name) const;
  // All values of a key by their names in lower case.
  [[nodiscard]] std::map<std::string, std::string> ValuesOf(const std::string& key) const;
  // Writes and deletes so far, those without effect included.
  [[nodiscard]] int changes() const { return changes_; }

 private:
  std::map<std::string, std::map<std::string, std::string>> keys_;  // all in lower case
  [[nodiscard]] bool CallFails() const;

  bool read_only_ = false;
  mutable int calls_ = 0;
  int failing_call_ = 0;
  Fails fails_ = Fails::kOnce;
  int changes_ = 0;
  int failing_flush_ = 0;
  Status flush_failure_;
};

}  // namespace quenlar
