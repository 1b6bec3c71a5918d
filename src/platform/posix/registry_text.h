// The settings file as text.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace quenlar {

// Keys and value names are found whatever the case of their letters, and written as they were first spelled.
class RegistryContents {
 public:
  void Save(const std::string& key, const std::string& name, const std::string& text);
  // A key with keys below it stays as it is.
  void Delete(const std::string& key);
  [[nodiscard]] bool HasKey(const std::string& key) const;
  // The whole text, or null.
  [[nodiscard]] const std::string* Find(const std::string& key, const std::string& name) const;

  //   # comment
  //   [Software\Quenlar\Project]
  //   StopNumber=99999
  // Control characters, percent signs and whatever would be taken for another part of a line stand as %XX.
  [[nodiscard]] std::string Format() const;

  struct Parsed;
  // What can be read of any bytes at all.
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
