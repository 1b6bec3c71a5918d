// The settings registry of Windows.
#pragma once

#include <functional>

#include "platform/code_page.h"
#include "platform/registry.h"

namespace quenlar {

// Texts are stored in the ANSI code page. All keys lie below one root, which is chosen once.
class Win32Registry final : public Registry {
 public:
  enum class Root { kMachine, kUser };

  // Returns the root for a key: the machine's, or the user's when the machine's cannot be written. Changes nothing.
  [[nodiscard]] static Root WritableRoot(const std::string& key);

  // The same decision over any registry, for tests. `access` says what may be done with a key of the machine's root.
  enum class Access { kNoKey, kReadOnly, kWritable };
  [[nodiscard]] static Root WritableRoot(std::string key, const std::function<Access(const std::string& path)>& access);

  Win32Registry(const CodePage& code_page, Root root) : code_page_(code_page), root_(root) {}

  void SaveRegValue(const std::string& key, const std::string& name, const std::string& text) override;
  [[nodiscard]] std::string GetRegValue(const std::string& key, const std::string& name) const override;
  void DeleteRegKey(const std::string& key) override;
  [[nodiscard]] bool KeyExists(const std::string& key) const override;
  [[nodiscard]] bool ValueExists(const std::string& key, const std::string& name) const override;

  [[nodiscard]] Root root() const { return root_; }

 private:
  class OpenKey;
  const CodePage& code_page_;
  const Root root_;
};

}  // namespace quenlar
