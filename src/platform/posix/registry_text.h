// The settings file as text, and its contents in memory.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace quenlar {

// Keys and values by name. Letter case makes no difference when one is looked up; each is written as it was first
// spelt.
class RegistryContents {
 public:
  void Save(const std::string& key, const std::string& name, const std::string& text);
  // Deletes a key and its values. A key with other keys below it stays as it is.
  void Delete(const std::string& key);
  [[nodiscard]] bool HasKey(const std::string& key) const;
  // Returns the text of a value, or null when there is none. Valid until the next change.
  [[nodiscard]] const std::string* Find(const std::string& key, const std::string& name) const;

  //   # comment
  //   [Software\Quenlar\Project]
  //   StopNumber=99999
  // Control characters, percent signs and characters that would end a part of a line are written as %XX.
  [[nodiscard]] std::string Format() const;

  struct Parsed;
  // Reads any bytes, as far as they can be understood.
  [[nodiscard]] static Parsed Parse(std::string_view text);

 private:
  struct Value {
    std::string name, text;
  };
  struct Key {
    std::string path;
    std::map<std::string, Value> values;  // by the name in lower case
  };
  std::map<std::string, Key> keys_;  // by the path in lower case
};

struct RegistryContents::Parsed {
  RegistryContents contents;
  bool damaged = false;  // some lines could not be understood
};

}  // namespace quenlar
