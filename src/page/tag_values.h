// The values of those attributes of a tag that are wanted.
#pragma once

#include <string>
#include <string_view>

#include "base/ascii.h"
#include "page/attributes.h"
#include "page/markup_reader.h"
#include "page/references.h"

namespace quenlar {

// An attribute's value as it is written; the first one of its name counts.
class FirstValue {
 public:
  explicit FirstValue(std::string_view name) : name_(name) {}
  // Whether the attribute has this name.
  bool Take(const TagAttribute& attribute) {
    if (attribute.name.size() != name_.size() || !EqualsIgnoreCase(attribute.name, name_)) return false;
    if (!there_) raw_ = attribute.value;
    there_ = true;
    return true;
  }
  [[nodiscard]] bool there() const { return there_; }
  [[nodiscard]] std::string_view raw() const { return raw_; }
  [[nodiscard]] std::string decoded() const {
    std::string text;
    AppendDecoded(raw_, ReferencePlace::kAttribute, text);
    return text;
  }

 private:
  std::string_view name_, raw_;
  bool there_ = false;
};

// Takes the wanted attributes of a tag.
template <typename... Values>
void TakeAttributes(std::string_view page, const Markup& tag, Values&... values) {
  AttributeReader attributes(page, tag.attributes);
  for (TagAttribute attribute; attributes.Next(attribute);) (void)(values.Take(attribute) || ...);
}

}  // namespace quenlar
