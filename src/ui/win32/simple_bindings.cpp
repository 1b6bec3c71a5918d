#include "ui/win32/simple_bindings.h"

#include "platform/win32/wide.h"
#include "ui/win32/color_scheme.h"

namespace quenlar::ui {

void ButtonBinding::Start() {
  ControlBinding::Start();
  Apply(Aspect::kText);
}

void ButtonBinding::Apply(Aspect aspect) {
  ControlBinding::Apply(aspect);
  if (aspect == Aspect::kText) SetNativeText(model().text());
}

void ButtonBinding::OnCommand(UINT code) {
  if (code == BN_CLICKED && model().enabled() && model().Click) model().Click();
}

LabelBinding::LabelBinding(Label& label, HWND window, BindingHost& host) : BindingTo(label, window, host) {
  if (is_link()) SetWindowSubclass(window, LinkProcedure, 0, reinterpret_cast<DWORD_PTR>(this));
}

LabelBinding::~LabelBinding() { RemoveWindowSubclass(window(), LinkProcedure, 0); }

void LabelBinding::Start() {
  ControlBinding::Start();
  Apply(Aspect::kText);
  Apply(Aspect::kColor);
}

void LabelBinding::Apply(Aspect aspect) {
  ControlBinding::Apply(aspect);
  if (aspect == Aspect::kText) {
    SetNativeText(model().text());
    OnPlaced(0);
  }
  if (aspect == Aspect::kColor) {
    Send(WM_SETFONT, reinterpret_cast<WPARAM>(model().underlined() ? host().underlined_font() : host().font()), TRUE);
    InvalidateRect(window(), nullptr, TRUE);
  }
}

HBRUSH LabelBinding::OnColor(HDC context) {
  if (!model().color() && !is_link()) return nullptr;
  const bool system_color = !model().color() || IsHighContrast() || IsDarkBackground(COLOR_BTNFACE);
  SetTextColor(context, system_color ? GetSysColor(COLOR_HOTLIGHT) : static_cast<COLORREF>(*model().color()));
  SetBkColor(context, GetSysColor(COLOR_BTNFACE));
  return GetSysColorBrush(COLOR_BTNFACE);
}

void LabelBinding::OnPlaced(int) {
  if (!is_link()) return;
  const HDC context = GetDC(window());
  const HGDIOBJ before = SelectObject(context, host().font());
  const std::wstring text = win32::ToWide(model().text());
  SIZE needed{};
  GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &needed);
  SelectObject(context, before);
  ReleaseDC(window(), context);

  RECT place;
  GetWindowRect(window(), &place);
  MapWindowPoints(HWND_DESKTOP, GetParent(window()), reinterpret_cast<POINT*>(&place), 2);
  const int width = needed.cx + Scaled(4);
  SetWindowPos(window(), nullptr, (place.left + place.right - width) / 2, place.top, width, place.bottom - place.top,
               SWP_NOZORDER | SWP_NOACTIVATE);
}

// The click may close the window, so it happens after the message at hand.
void LabelBinding::Follow() {
  host().Post([this] { model().Click(); });
}

bool LabelBinding::OnKey(WPARAM key) {
  if (!is_link() || (key != VK_RETURN && key != VK_SPACE)) return false;
  Follow();
  return true;
}

void LabelBinding::DrawFocus() const {
  if (GetFocus() != window() || (Send(WM_QUERYUISTATE) & UISF_HIDEFOCUS)) return;
  RECT place;
  GetClientRect(window(), &place);
  const HDC context = GetDC(window());
  DrawFocusRect(context, &place);
  ReleaseDC(window(), context);
}

LRESULT CALLBACK LabelBinding::LinkProcedure(HWND window, UINT message, WPARAM w, LPARAM l, UINT_PTR, DWORD_PTR self) {
  auto& binding = *reinterpret_cast<LabelBinding*>(self);
  switch (message) {
    case WM_MOUSEMOVE:
      if (!binding.pointer_inside_) {
        binding.pointer_inside_ = true;
        TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, window, 0};
        TrackMouseEvent(&track);
      }
      if (binding.model().MouseMove) binding.model().MouseMove();  // every time: a click has changed how the link looks
      break;
    case WM_MOUSELEAVE:
      binding.pointer_inside_ = binding.pressed_ = false;
      if (binding.model().MouseLeave) binding.model().MouseLeave();
      break;
    case WM_SETCURSOR:
      SetCursor(LoadCursorW(nullptr, IDC_HAND));
      return TRUE;
    case WM_LBUTTONDOWN:
      binding.pressed_ = true;
      break;
    case WM_LBUTTONUP:
      if (binding.pressed_) binding.Follow();
      binding.pressed_ = false;
      break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      InvalidateRect(window, nullptr, TRUE);
      break;
    case WM_PAINT: {
      const LRESULT result = DefSubclassProc(window, message, w, l);
      binding.DrawFocus();
      return result;
    }
    default:
      break;
  }
  return DefSubclassProc(window, message, w, l);
}

PanelBinding::~PanelBinding() {
  if (picture_) DestroyIcon(picture_);
}

void PanelBinding::OnPlaced(int) {
  constexpr LONG_PTR kKindOfStatic = 0x1F;
  if ((GetWindowLongPtrW(window(), GWL_STYLE) & kKindOfStatic) != SS_ICON) return;
  RECT place;
  GetClientRect(window(), &place);
  const HICON before = picture_;
  picture_ = host().MakeIcon(place.right, place.bottom);
  Send(STM_SETICON, reinterpret_cast<WPARAM>(picture_));
  if (before) DestroyIcon(before);
}

void TextBoxBinding::Start() {
  ControlBinding::Start();
  Send(EM_SETLIMITTEXT, model().max_length > 0 ? model().max_length : 0x7FFFFFFE);
  Apply(Aspect::kText);
}

void TextBoxBinding::Apply(Aspect aspect) {
  ControlBinding::Apply(aspect);
  if (aspect == Aspect::kText) {
    applying_ = true;
    SetNativeText(model().text());
    applying_ = false;
  }
  if (aspect == Aspect::kCaret) {
    const int end = GetWindowTextLengthW(window());
    Send(EM_SETSEL, static_cast<WPARAM>(end), end);
    Send(EM_SCROLLCARET);
  }
}

bool TextBoxBinding::OnKey(WPARAM key) {
  if (!ControlHeld() || key != 'A') return false;
  Send(EM_SETSEL, 0, -1);
  return true;
}

void TextBoxBinding::OnCommand(UINT code) {
  if (code == EN_CHANGE && !applying_) model().UserText(NativeText());
}

void CheckBoxBinding::Start() {
  ControlBinding::Start();
  SetNativeText(model().text());
  Apply(Aspect::kChecked);
}

void CheckBoxBinding::Apply(Aspect aspect) {
  ControlBinding::Apply(aspect);
  if (aspect == Aspect::kChecked) Send(BM_SETCHECK, model().checked() ? BST_CHECKED : BST_UNCHECKED);
}

void CheckBoxBinding::OnCommand(UINT code) {
  if (code == BN_CLICKED) model().UserClick();
}

void OptionButtonBinding::Start() {
  ControlBinding::Start();
  SetNativeText(model().text());
  Apply(Aspect::kChecked);
}

void OptionButtonBinding::Apply(Aspect aspect) {
  ControlBinding::Apply(aspect);
  if (aspect == Aspect::kChecked) Send(BM_SETCHECK, model().selected() ? BST_CHECKED : BST_UNCHECKED);
}

void OptionButtonBinding::OnCommand(UINT code) {
  if (code == BN_CLICKED) model().Select();
}

}  // namespace quenlar::ui
