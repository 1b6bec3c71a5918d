#include "ui/win32/make_binding.h"

#include <utility>

#include "ui/win32/bar_bindings.h"
#include "ui/win32/list_bindings.h"
#include "ui/win32/list_view_binding.h"
#include "ui/win32/simple_bindings.h"

namespace quenlar::ui {
namespace {

class BindingMaker final : public ControlVisitor {
 public:
  BindingMaker(HWND window, BindingHost& host) : window_(window), host_(host) {}

  std::unique_ptr<ControlBinding> made;

  void Visit(Button& button) override { Make<ButtonBinding>(button); }
  void Visit(Label& label) override { Make<LabelBinding>(label); }
  void Visit(TextBox& box) override { Make<TextBoxBinding>(box); }
  void Visit(CheckBox& box) override { Make<CheckBoxBinding>(box); }
  void Visit(OptionButton& option) override { Make<OptionButtonBinding>(option); }
  void Visit(ListBox& list) override { Make<ListBoxBinding>(list); }
  void Visit(ComboBox& combo) override { Make<ComboBoxBinding>(combo); }
  void Visit(ListView& list) override { Make<ListViewBinding>(list); }
  void Visit(StatusBar& bar) override { Make<StatusBarBinding>(bar); }
  void Visit(TabStrip& tabs) override { Make<TabStripBinding>(tabs); }
  void Visit(Panel& panel) override { Make<PanelBinding>(panel); }
  // These have no native control: a menu is made when it pops up, a timer belongs to the event loop.
  void Visit(MenuItem&) override {}
  void Visit(Timer&) override {}

 private:
  template <typename Binding, typename Model>
  void Make(Model& model) {
    made = std::make_unique<Binding>(model, window_, host_);
  }

  HWND window_;
  BindingHost& host_;
};

}  // namespace

std::unique_ptr<ControlBinding> MakeBinding(Control& control, HWND window, BindingHost& host) {
  BindingMaker maker(window, host);
  control.Accept(maker);
  return std::move(maker.made);
}

}  // namespace quenlar::ui
