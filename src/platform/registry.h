// The settings registry: named text values below keys. Key paths come without a root ("Software\Quenlar\Project").
#pragma once

#include <string>

#include "base/status.h"

namespace quenlar {

class Registry {
 public:
  virtual ~Registry() = default;

  // Creates or opens the key and writes the value. Failures are silent: the store's callers go on, and who must know
  // asks Flush.
  virtual void SaveRegValue(const std::string& key, const std::string& name, const std::string& text) = 0;

  // At most 254 characters of the value. Empty when the key does not exist; 254 blanks when the key exists and the
  // value does not (the buffer as it was prepared), which every numeric reader takes for 0.
  [[nodiscard]] virtual std::string GetRegValue(const std::string& key, const std::string& name) const = 0;

  virtual void DeleteRegKey(const std::string& key) = 0;

  // Also true where nobody can tell: what is there must not be taken for a first start and written over.
  [[nodiscard]] virtual bool KeyExists(const std::string& key) const = 0;
  // Tells a missing value from a blank one.
  [[nodiscard]] virtual bool ValueExists(const std::string& key, const std::string& name) const = 0;

  // Stores the changes that are still in memory alone; a registry that stores each at once has none. Also fails where
  // what is stored could not be read. The message names the place and is no whole sentence.
  virtual Status Flush() { return Status::Ok(); }
};

}  // namespace quenlar
