#include "ui/win32/binder.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "ui/win32/form_window.h"

namespace quenlar::ui {
namespace {

// A modal window's loop looks at least this often whether the window is still there.
constexpr std::chrono::milliseconds kModalWait{1000};

}  // namespace

Binder::~Binder() {
  for (auto& [form, window] : windows_) {
    form->window = {};
    if (window) window->Destroy();
  }
}

void Binder::Bind(Form& form) {
  assert(HasDialog(resources_.program, form.name()));
  windows_[&form] = nullptr;
  form.window.create = [this, &form] { Create(form); };
  form.window.show = [this, &form] {
    if (FormWindow* window = WindowOf(form)) window->Show();
  };
  form.window.hide = [this, &form] {
    if (FormWindow* window = WindowOf(form)) window->Hide();
  };
  form.window.caption_changed = [this, &form] {
    if (FormWindow* window = WindowOf(form)) window->ShowCaption();
  };
  form.window.run_modal = [this, &form] { RunModal(form); };
  form.window.destroy = [this, &form] { Destroy(form); };
}

FormWindow* Binder::WindowOf(Form& form) const {
  const auto found = windows_.find(&form);
  return found == windows_.end() ? nullptr : found->second.get();
}

HWND Binder::ActiveFormWindow() const {
  HWND any_visible = nullptr;
  for (const auto& [form, window] : windows_) {
    if (!window || !IsWindowVisible(window->window())) continue;
    if (window->window() == GetActiveWindow()) return window->window();
    any_visible = window->window();
  }
  return any_visible;
}

Dialog Binder::DialogOf(const Form& form) const {
  const auto found = std::find_if(resources_.dialogs.begin(), resources_.dialogs.end(),
                                  [&](const Dialog& dialog) { return form.name() == dialog.form; });
  return found == resources_.dialogs.end() ? Dialog{form.name().c_str()} : *found;
}

void Binder::Create(Form& form) {
  const Dialog dialog = DialogOf(form);
  windows_[&form] = FormWindow::Create(form, dialog, resources_, dialog.owned ? ActiveFormWindow() : nullptr);
}

void Binder::RunModal(Form& form) {
  const FormWindow* window = WindowOf(form);
  const HWND owner = window ? GetWindow(window->window(), GW_OWNER) : nullptr;
  if (owner && !EnableWindow(owner, FALSE)) disabled_owners_[&form] = owner;
  while (form.loaded()) loop_.Wait(kModalWait);
}

// Before the modal window goes, or the system would give the focus to another program.
void Binder::EnableOwner(Form& form) {
  const auto found = disabled_owners_.find(&form);
  if (found == disabled_owners_.end()) return;
  EnableWindow(found->second, TRUE);
  disabled_owners_.erase(found);
}

void Binder::Destroy(Form& form) {
  if (!WindowOf(form)) return;
  const auto window = std::exchange(windows_[&form], nullptr);
  CloseOwned(window->window());
  EnableOwner(form);
  window->Destroy();
}

// The system destroys owned windows together with their owner; their forms must hear of it first.
void Binder::CloseOwned(HWND owner) {
  for (auto& [form, window] : windows_) {
    if (window && GetWindow(window->window(), GW_OWNER) == owner) form->Close();
  }
}

bool Binder::FilterMessage(MSG& message) {
  const HWND root = message.hwnd ? GetAncestor(message.hwnd, GA_ROOT) : nullptr;
  for (const auto& [form, window] : windows_) {
    if (!window || window->window() != root) continue;
    const auto alive = window;
    return alive->FilterKey(message) || IsDialogMessageW(root, &message);
  }
  return false;
}

}  // namespace quenlar::ui
