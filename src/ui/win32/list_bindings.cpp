#include "ui/win32/list_bindings.h"

#include <algorithm>

#include "platform/win32/clipboard.h"
#include "platform/win32/wide.h"

namespace quenlar::ui {

void ListBoxBinding::Start() {
  ControlBinding::Start();
  FillItems();
}

void ListBoxBinding::Apply(Aspect aspect) {
  ControlBinding::Apply(aspect);
  if (aspect == Aspect::kItems) FillItems();
}

void ListBoxBinding::FillItems() {
  Send(WM_SETREDRAW, FALSE);
  Send(LB_RESETCONTENT);
  Send(LB_INITSTORAGE, model().items().size(), static_cast<LPARAM>(model().items().size() * 64));
  for (const std::string& item : model().items()) Send(LB_ADDSTRING, 0, win32::ToWide(item).c_str());
  for (std::size_t i = 0; model().multi_select && i < model().items().size(); ++i) {
    if (model().selected(i)) Send(LB_SETSEL, TRUE, static_cast<LPARAM>(i));
  }
  Send(WM_SETREDRAW, TRUE);
  RedrawWindow(window(), nullptr, nullptr, RDW_ERASE | RDW_FRAME | RDW_INVALIDATE);
}

void ListBoxBinding::OnCommand(UINT code) {
  if (code == LBN_SELCHANGE || code == LBN_SELCANCEL) TellSelection();
}

bool ListBoxBinding::OnKey(WPARAM key) {
  if (key == VK_DELETE && model().DeleteKey) {
    model().DeleteKey();
    return true;
  }
  if (!ControlHeld()) return false;
  if (key == 'A' && model().multi_select) {
    Send(LB_SETSEL, TRUE, -1);
    TellSelection();
    return true;
  }
  if (key == 'C') CopySelection();
  return key == 'C';
}

// One line an item.
void ListBoxBinding::CopySelection() const {
  std::string text;
  for (std::size_t i = 0; i < model().items().size(); ++i) {
    if (Send(LB_GETSEL, i) > 0) text.append(text.empty() ? "" : "\r\n").append(model().items()[i]);
  }
  if (!text.empty()) win32::PutOnClipboard(text);
}

void ListBoxBinding::TellSelection() {
  std::vector<bool> selected(model().items().size());
  for (std::size_t i = 0; i < selected.size(); ++i) selected[i] = Send(LB_GETSEL, i) > 0;
  model().UserSelect(std::move(selected));
}

void ComboBoxBinding::Start() {
  ControlBinding::Start();
  FillItems();
  if (!model().hint.empty()) Send(CB_SETCUEBANNER, 0, win32::ToWide(model().hint).c_str());
}

void ComboBoxBinding::Apply(Aspect aspect) {
  ControlBinding::Apply(aspect);
  if (aspect == Aspect::kItems) FillItems();
  if (aspect == Aspect::kText) ShowText();
  if (aspect == Aspect::kCaret) {
    const int end = GetWindowTextLengthW(window());
    Send(CB_SETEDITSEL, 0, MAKELPARAM(end, end));
  }
}

// Emptying a combo box empties its text as well. The text belongs to the model, so it is shown again.
void ComboBoxBinding::FillItems() {
  Send(CB_RESETCONTENT);
  for (const std::string& item : model().items()) Send(CB_ADDSTRING, 0, win32::ToWide(item).c_str());
  ShowText();
}

void ComboBoxBinding::ShowText() {
  if (model().editable) {
    SetNativeText(model().text());
    return;
  }
  const auto& items = model().items();
  const auto found = std::find(items.begin(), items.end(), model().text());
  Send(CB_SETCURSEL, found == items.end() ? static_cast<WPARAM>(-1) : static_cast<WPARAM>(found - items.begin()));
}

// An entry counts as picked when the user has decided: by a click, by Enter, or by an arrow key while the list is
// closed. Walking through the open list decides nothing yet, though it changes the text that is shown; where it ends
// without a choice (Esc, Tab), the model's text comes back. Both wait until the control has done with the message: it
// writes its text itself, and the model may fill the list anew.
void ComboBoxBinding::OnCommand(UINT code) {
  const bool walked = code == CBN_SELCHANGE && !Send(CB_GETDROPPEDSTATE);
  if ((code == CBN_SELENDOK || walked) && !pick_posted_) {
    pick_posted_ = true;
    host().Post([this] { Picked(); });
  }
  if (code == CBN_SELENDCANCEL) host().Post([this] { ShowText(); });
  if (code == CBN_EDITCHANGE) model().UserText(NativeText());
  if (code == CBN_SETFOCUS && model().GotFocus && !host().moving_focus()) model().GotFocus();
}

bool ComboBoxBinding::OnKey(WPARAM key) {
  if (!model().editable || !ControlHeld() || key != 'A') return false;
  Send(CB_SETEDITSEL, 0, MAKELPARAM(0, -1));
  return true;
}

void ComboBoxBinding::Picked() {
  pick_posted_ = false;
  const LRESULT index = Send(CB_GETCURSEL);
  if (index == CB_ERR) {
    ShowText();  // the opening list may have completed what was typed, without a word to us
  } else {
    model().UserPick(static_cast<std::size_t>(index));
  }
}

}  // namespace quenlar::ui
