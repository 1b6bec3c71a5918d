#include "ui/controls.h"

#include <algorithm>

#include "base/ascii.h"

namespace quenlar::ui {

void Button::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }
void Label::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }
void TextBox::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }
void CheckBox::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }
void OptionButton::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }
void ListBox::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }
void ComboBox::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }
void ListView::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }
void StatusBar::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }
void TabStrip::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }
void Panel::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }
void MenuItem::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }
void Timer::Accept(ControlVisitor& visitor) { visitor.Visit(*this); }

std::size_t ListBox::SelectedCount() const {
  return static_cast<std::size_t>(std::count(selected_.begin(), selected_.end(), true));
}

void ListBox::SetItems(std::vector<std::string> items) {
  if (sorted) {
    std::stable_sort(items.begin(), items.end(),
                     [](const std::string& a, const std::string& b) { return Lower(a) < Lower(b); });
  }
  items_ = std::move(items);
  selected_.assign(items_.size(), false);
  Notify(Aspect::kItems);
}

void ListBox::UserSelect(std::vector<bool> selected) {
  selected_ = std::move(selected);
  selected_.resize(items_.size());
  if (Click) Click();
}

void ComboBox::UserPick(std::size_t index) {
  if (index >= items_.size()) return;
  Set(text_, items_[index], Aspect::kText);
  if (Click) Click();
}

void Form::SetCaption(std::string caption) {
  if (caption_ == caption) return;
  caption_ = std::move(caption);
  if (window.caption_changed) window.caption_changed();
}

void Form::EnsureLoaded() {
  if (loaded_) return;
  loaded_ = true;
  if (window.create) window.create();
  Load();
}

void Form::Show() {
  EnsureLoaded();
  shown_ = true;
  if (window.show) window.show();
}

void Form::ShowModal() {
  Show();
  if (window.run_modal) window.run_modal();
}

void Form::Hide() {
  shown_ = false;
  if (window.hide) window.hide();
}

void Form::Close() {
  if (!loaded_) return;
  loaded_ = shown_ = false;
  Unload();
  if (window.destroy) window.destroy();
}

}  // namespace quenlar::ui
