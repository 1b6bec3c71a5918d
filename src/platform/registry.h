// The settings registry: named text values below keys. Key paths come without a root ("Software\Quenlar\Project").
#pragma once

#include <string>

#include "base/status.h"

namespace quenlar {

// The letter case of keys and names makes no difference. All texts are UTF-8. No member pumps.
class Registry {
 public:
  virtual ~Registry() = default;

  // Creates the key when it does not exist, and writes the value. A failure is silent, because callers go on without
  // the value. A caller that must know calls Flush.
  virtual void SaveRegValue(const std::string& key, const std::string& name, const std::string& text) = 0;

  // Returns the first 254 characters of the value, or "" when the key does not exist.
  //
  // When the key exists and the value does not, the result is 254 blanks. Every reader of numbers takes them for 0, and
  // ValueExists tells such a value from a blank one. Kept: RegistryContract.AMissingValueOfAnExistingKeyGives254Blanks.
  [[nodiscard]] virtual std::string GetRegValue(const std::string& key, const std::string& name) const = 0;

  // Deletes the key with all its values. Does nothing when there is no such key, or when other keys lie below it.
  virtual void DeleteRegKey(const std::string& key) = 0;

  // Also true when the system cannot tell. Otherwise the program would take stored settings for a first start and write
  // its defaults over them.
  [[nodiscard]] virtual bool KeyExists(const std::string& key) const = 0;

  // Whether the key exists and holds a value of this name, even an empty one.
  [[nodiscard]] virtual bool ValueExists(const std::string& key, const std::string& name) const = 0;

  // Stores what is still only in memory. A registry that stores each change at once has nothing to do here. Fails when
  // the changes cannot be written, or when the stored file could not be read at the start. The message names the place;
  // callers add what they wanted to do.
  virtual Status Flush() { return Status::Ok(); }
};

}  // namespace quenlar
