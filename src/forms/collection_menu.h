// What the menu of the main window's list offers while it shows a collection.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/collection_job.h"
#include "engine/never_list.h"
#include "forms/frm_sightings.h"
#include "forms/frm_why.h"
#include "platform/message_boxes.h"
#include "ui/controls.h"

namespace quenlar {

class CollectionMenu {
 public:
  // Nothing of these is used before the first command runs, so they may be constructed later. `offered` says whether
  // the list shows a collection, and `show` is frmExtract::ShowDialog.
  struct Context {
    CollectionJob& job;
    NeverList& never;
    frmSightings& sightings;
    frmWhy& why;
    Engine& engine;
    std::function<bool()> offered;
    std::function<void(ui::Form&)> show;
  };

  explicit CollectionMenu(Context context) : context_(std::move(context)) {}

  // The commands, which refer to this object.
  [[nodiscard]] std::vector<ui::ListView::Command> Commands();

 private:
  using Rows = std::vector<std::uint32_t>;

  void ShowSightings(const Rows& rows);
  void NeverListAgain(const Rows& rows);
  void AskWhy(const Rows& rows);
  void OpenAsWebPage();
  [[nodiscard]] Result<std::vector<SightingRow>> SightingsOf(const std::string& address) const;
  [[nodiscard]] std::string AddressAt(const Rows& rows) const;
  BoxAnswer Show(const std::string& text, BoxButtons buttons = BoxButtons::kOk, BoxIcon icon = BoxIcon::kExclamation);
  void Warn(const Status& status) { Show(SentenceOf(status)); }

  Context context_;
};

}  // namespace quenlar
