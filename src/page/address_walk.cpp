#include "page/address_walk.h"

#include <array>

#include "page/references.h"
#include "page/tag_values.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// The names of a tag's attributes that came already. Of a tag with very many only the first ones are compared.
class NamesBefore {
 public:
  bool Repeats(std::string_view name) {
    for (std::size_t i = 0; i < count_; ++i) {
      if (EqualsIgnoreCase(names_[i], name)) return true;
    }
    if (count_ < names_.size()) names_[count_++] = name;
    return false;
  }

 private:
  std::array<std::string_view, 32> names_;
  std::size_t count_ = 0;
};

}  // namespace

AddressWalk::AddressWalk(std::string_view page, PageSignKind signs, AddressFinder& finder)
    : page_(page), finder_(finder), signs_(page, signs), runs_(page, finder), hints_(page) {}

void AddressWalk::Comment(const Markup& comment) {
  const bool sign = signs_.PassBefore(comment.end);
  runs_.Joint(false);
  if (!sign) return;
  finder_.SetPlace(comment.begin);
  finder_.Comment(Inside(comment));
}

void AddressWalk::RawText(const Markup& raw) {
  if (raw.name == TagName::kScript) {
    if (!signs_.PassBefore(raw.end)) return;
    finder_.SetPlace(raw.begin);
    finder_.Script(Inside(raw));
  } else if (raw.name == TagName::kStyle) {
    signs_.PassBefore(raw.end);
  } else {
    Text(raw.inside, raw.inside_end, raw.name == TagName::kTitle || raw.name == TagName::kTextarea);
  }
}

ElementLook AddressWalk::LookOf(const Markup& tag) {
  if (looks_ == Looks::kUnknown) {
    const auto says = [this](std::string_view word) { return FindIgnoreCase(page_, word) != kNone; };
    looks_ = says("hidden") || says("display") || says("-override") ? Looks::kSome : Looks::kNone;
  }
  if (looks_ == Looks::kNone) return {};
  FirstValue hidden("hidden"), style("style");
  TakeAttributes(page_, tag, hidden, style);
  ElementLook look;
  if (style.there()) look = LookOfStyle(style.decoded());
  look.hidden = look.hidden || hidden.there();
  return look;
}

// Until the first element that is shown in a special way it does not matter which elements are open. Those in front of
// it are read once more, because they tell where it ends.
void AddressWalk::FollowElements(std::size_t end) {
  follows_elements_ = true;
  MarkupReader reader(page_.substr(0, end));
  for (Markup tag;;) {
    reader.Next(tag);
    if (tag.kind == Markup::Kind::kEnd) return;
    if (tag.kind == Markup::Kind::kStartTag)
      elements_.Start(tag.name, NameOf(tag), {}, tag.foreign && tag.self_closing);
    else if (tag.kind == Markup::Kind::kEndTag)
      elements_.End(tag.name, NameOf(tag));
  }
}

void AddressWalk::Attributes(const Markup& tag) {
  NamesBefore names;
  finder_.SetPlace(tag.begin);
  AttributeReader attributes(page_, tag.attributes);
  for (TagAttribute attribute; attributes.Next(attribute);) {
    if (names.Repeats(attribute.name) || attribute.value.empty()) continue;
    const std::string_view value = Decoded(attribute.value, ReferencePlace::kAttribute, scratch_);
    const bool link = tag.name == TagName::kA || tag.name == TagName::kArea;
    if (link && EqualsIgnoreCase(attribute.name, "href") && IsMailto(value))
      finder_.Mailto(value);
    else if (EqualsIgnoreCase(attribute.name, "data-cfemail"))
      finder_.CfEmail(value);
    else
      finder_.Attribute(value);
  }
}

}  // namespace quenlar
