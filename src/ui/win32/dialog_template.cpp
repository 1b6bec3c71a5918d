#include "ui/win32/dialog_template.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <utility>

#include "platform/win32/wide.h"
#include "ui/win32/dialog_items.h"

namespace quenlar::ui {
namespace {

// Walks over an extended dialog template: numbers of 16 and 32 bits, texts, and texts that may be numbers.
class TemplateReader {
 public:
  explicit TemplateReader(const std::byte* begin) : begin_(begin), at_(begin) {}

  [[nodiscard]] const std::byte* at() const { return at_; }
  template <typename T>
  T Take() {
    T value;
    std::memcpy(&value, at_, sizeof value);
    at_ += sizeof value;
    return value;
  }
  std::wstring TakeText() {
    std::wstring text;
    while (const auto unit = Take<wchar_t>()) text += unit;
    return text;
  }
  // Empty for a number.
  std::wstring TakeTextOrNumber() {
    constexpr std::uint16_t kNumberFollows = 0xFFFF;
    std::uint16_t first;
    std::memcpy(&first, at_, sizeof first);
    if (first != kNumberFollows) return TakeText();
    at_ += 4;
    return {};
  }
  void SkipBytes(std::size_t count) { at_ += count; }
  void Align() { at_ += (4 - (at_ - begin_) % 4) % 4; }

 private:
  const std::byte* begin_;
  const std::byte* at_;
};

template <typename T>
void Put(std::vector<std::byte>& memory, T value) {
  const auto* bytes = reinterpret_cast<const std::byte*>(&value);
  memory.insert(memory.end(), bytes, bytes + sizeof value);
}

// Takes the next item and adds what the system is to know of it to the memory.
DialogTemplate::Item TakeItem(TemplateReader& reader, std::vector<std::byte>& memory) {
  reader.Align();
  memory.resize((memory.size() + 3) / 4 * 4);
  DialogTemplate::Item item{};
  // In the place of the help number, which the program does not use.
  const auto anchor = reader.Take<std::array<std::uint8_t, 4>>();
  item.move_x = anchor[0];
  item.grow_x = anchor[1];
  item.move_y = anchor[2];
  item.grow_y = anchor[3];
  const std::byte* const styles = reader.at();
  reader.SkipBytes(8);
  const auto x = reader.Take<std::int16_t>(), y = reader.Take<std::int16_t>();
  const auto width = reader.Take<std::int16_t>(), height = reader.Take<std::int16_t>();
  item.place = {x, y, x + width, y + height};
  const std::byte* const styles_end = reader.at();
  item.number = reader.Take<std::int32_t>();
  const std::byte* const kind = reader.at();
  reader.TakeTextOrNumber();
  const std::byte* const text = reader.at();
  item.name = win32::FromWide(reader.TakeTextOrNumber());
  const std::byte* const data = reader.at();
  reader.SkipBytes(reader.Take<std::uint16_t>());

  const bool is_label = item.number == IDC_STATIC;
  if (is_label) item.name.clear();
  if (item.number == NAMED) item.number = ControlNumber(item.name);
  Put(memory, std::uint32_t{0});
  memory.insert(memory.end(), styles, styles_end);
  Put(memory, static_cast<std::int32_t>(item.number));
  memory.insert(memory.end(), kind, text);
  if (is_label) {
    memory.insert(memory.end(), text, data);
  } else {
    Put(memory, L'\0');
  }
  memory.insert(memory.end(), data, reader.at());
  return item;
}

HRSRC Find(HINSTANCE program, std::string_view name) {
  return FindResourceW(program, win32::ToWide(name).c_str(), RT_DIALOG);
}

}  // namespace

bool HasDialog(HINSTANCE program, std::string_view name) { return Find(program, name) != nullptr; }

DialogTemplate ReadDialogTemplate(HINSTANCE program, std::string_view name) {
  const HRSRC found = Find(program, name);
  assert(found);
  const auto* const begin = static_cast<const std::byte*>(LockResource(LoadResource(program, found)));
  TemplateReader reader(begin);

  reader.SkipBytes(12);  // version, signature, help number, extended style
  const auto style = reader.Take<std::uint32_t>();
  const auto count = reader.Take<std::uint16_t>();
  reader.SkipBytes(4);  // the place
  DialogTemplate dialog;
  dialog.size.cx = reader.Take<std::int16_t>();
  dialog.size.cy = reader.Take<std::int16_t>();
  reader.TakeTextOrNumber();  // menu
  reader.TakeTextOrNumber();  // class
  reader.TakeText();          // title
  if (style & DS_SETFONT) {
    reader.SkipBytes(6);  // size, weight, italic, character set
    reader.TakeText();
  }
  dialog.memory.assign(begin, reader.at());
  for (int i = 0; i < count; ++i) {
    DialogTemplate::Item item = TakeItem(reader, dialog.memory);
    assert(item.number == IDC_STATIC || std::none_of(dialog.items.begin(), dialog.items.end(),
                                                     [&](const auto& other) { return other.number == item.number; }));
    dialog.items.push_back(std::move(item));
  }
  return dialog;
}

}  // namespace quenlar::ui
