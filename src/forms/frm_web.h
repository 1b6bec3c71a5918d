// The dialog of the web settings: whether the window collects from today's web, how far it goes, and its manners.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/never_list.h"
#include "platform/file_dialogs.h"
#include "platform/message_boxes.h"
#include "platform/registry.h"
#include "settings/web_settings.h"
#include "ui/controls.h"

namespace quenlar {

// A dialog with tabs. It is modal, but not while a run goes on. OK checks what was typed and stores everything. Closing
// the dialog in any other way changes nothing. The buttons of the list of what is never listed act at once.
class frmWeb final : public ui::Form {
 public:
  // Everything that the dialog works on. It must outlive the dialog. `stored` is called behind OK.
  struct Context {
    Registry& registry;
    WebSettings& settings;
    NeverList& never;
    MessageBoxes& boxes;
    FileDialogs& dialogs;
    const Installation& installation;
    std::function<void()> stored;
  };

  explicit frmWeb(Context context);

  ui::TabStrip tabWeb{"tabWeb", {"&General", "&Reach", "&Manners", "&Never list"}};
  ui::Panel picGeneral{"picGeneral"}, picReach{"picReach"}, picManners{"picManners"}, picNever{"picNever"};

  // Tab General: the switch, who collects, and who is asked for keywords.
  ui::CheckBox chkCollect{"chkCollect", "Collect from today's &web"};
  ui::TextBox txtContact{"txtContact"};
  ui::TextBox txtService{"txtService"};

  // Tab Reach: what is visited, and what is listed.
  ui::ComboBox cmbScope{"cmbScope"};
  ui::TextBox txtDepth{"txtDepth"};
  ui::TextBox txtPages{"txtPages"};
  ui::CheckBox chkProtected{"chkProtected", "List protected &addresses too"};

  // Tab Manners: how the sites are visited.
  ui::TextBox txtPause{"txtPause"};
  ui::TextBox txtHosts{"txtHosts"};
  ui::CheckBox chkRobots{"chkRobots", "&Obey robots.txt"};

  // Tab Never list: the suppression list.
  ui::ListBox lstNever{"lstNever"};
  ui::TextBox txtNever{"txtNever"};
  ui::Button cmdAdd{"cmdAdd", "&Add"};
  ui::Button cmdImport{"cmdImport", "&Import ..."};
  ui::Button cmdRemove{"cmdRemove", "Remo&ve"};
  ui::Label lblNever{"lblNever"};

  ui::Button cmdOK{"cmdOK", "OK"};
  ui::Button cmdCancel{"cmdCancel", "Cancel"};

  [[nodiscard]] std::vector<ui::Control*> Controls() override;
  void Load() override;

 private:
  void tabWeb_Click();
  void cmdOK_Click();
  void cmdAdd_Click();
  void cmdImport_Click();
  void cmdRemove_Click();
  void FillNever();
  void TellChange(const Result<std::vector<std::string>>& change);
  // What the controls say. Empty, after a message and with the focus on the control, where one of them says nothing of
  // use.
  [[nodiscard]] std::optional<WebSettings> ReadControls();
  [[nodiscard]] bool TakeNumber(ui::TextBox& box, std::size_t tab, const char* what, std::int32_t& number,
                                std::int32_t WebSettings::*variable);
  [[nodiscard]] bool TakePause(std::int32_t& milliseconds);
  [[nodiscard]] bool TakeText(ui::TextBox& box, const char* what, std::string& text,
                              std::string (*check)(const std::string&));
  void Refuse(ui::TextBox& box, std::size_t tab, const std::string& text);

  Context context_;
};

// A pause as the dialog shows and takes it: "1", "0.5", "0,25" are seconds, with three digits behind the point at most.
[[nodiscard]] std::string PauseText(std::int32_t milliseconds);
[[nodiscard]] std::optional<std::int32_t> ParsePause(std::string_view text);

}  // namespace quenlar
