#include "ui/win32/dialog_template.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quenlar::ui {
namespace {

// Walks over an extended dialog template: numbers of 16 and 32 bits, texts, and texts that may be numbers.
class TemplateReader {
 public:
  explicit TemplateReader(const std::byte* begin) : begin_(begin), at_(begin) {}

  template <typename T>
  T Take() {
    T value;
    std::memcpy(&value, at_, sizeof value);
    at_ += sizeof value;
    return value;
  }
  void SkipText() {
    while (Take<std::uint16_t>() != 0) {
    }
  }
  void SkipTextOrNumber() {
    std::uint16_t first;
    std::memcpy(&first, at_, sizeof first);
    if (first == 0xFFFF) {
      at_ += 4;
    } else {
      SkipText();
    }
  }
  void SkipBytes(std::size_t count) { at_ += count; }
  void Align() { at_ += (4 - (at_ - begin_) % 4) % 4; }

 private:
  const std::byte* begin_;
  const std::byte* at_;
};

}  // namespace

DialogTemplate ReadDialogTemplate(HINSTANCE program, int dialog_id) {
  const HRSRC found = FindResourceW(program, MAKEINTRESOURCEW(dialog_id), RT_DIALOG);
  assert(found);
  TemplateReader reader(static_cast<const std::byte*>(LockResource(LoadResource(program, found))));

  reader.SkipBytes(12);  // version, signature, help number, extended style
  const auto style = reader.Take<std::uint32_t>();
  const auto count = reader.Take<std::uint16_t>();
  reader.SkipBytes(4);  // the place
  DialogTemplate dialog;
  dialog.size.cx = reader.Take<std::int16_t>();
  dialog.size.cy = reader.Take<std::int16_t>();
  reader.SkipTextOrNumber();  // menu
  reader.SkipTextOrNumber();  // class
  reader.SkipText();          // title
  if (style & DS_SETFONT) {
    reader.SkipBytes(6);  // size, weight, italic, character set
    reader.SkipText();
  }
  for (int i = 0; i < count; ++i) {
    reader.Align();
    reader.SkipBytes(12);  // help number, styles
    const auto x = reader.Take<std::int16_t>(), y = reader.Take<std::int16_t>();
    const auto width = reader.Take<std::int16_t>(), height = reader.Take<std::int16_t>();
    const auto id = reader.Take<std::int32_t>();
    dialog.items.push_back({id, RECT{x, y, x + width, y + height}});
    reader.SkipTextOrNumber();  // class
    reader.SkipTextOrNumber();  // caption
    reader.SkipBytes(reader.Take<std::uint16_t>());
  }
  return dialog;
}

}  // namespace quenlar::ui
