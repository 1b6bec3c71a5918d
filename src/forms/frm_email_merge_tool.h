// The mailing list tool: opens address books, merges their addresses, saves the result.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/status.h"
#include "mailtool/email_book_merge.h"
#include "platform/file_dialogs.h"
#include "platform/message_boxes.h"
#include "state/settings.h"
#include "ui/controls.h"

namespace quenlar {

// The window lists the opened books on its left and the merged addresses on its right. A command that pumps lets no
// other one in until it has ended.
class frmEmailMergeTool final : public ui::Form {
 public:
  // Everything that the window works on. It must outlive the window. Books and addresses stay when the window closes.
  struct Context {
    eMailBookMerge& books;
    Files& files;
    const CodePage& code_page;
    EventLoop& loop;
    MessageBoxes& boxes;
    FileDialogs& dialogs;
    const Installation& installation;
    std::function<Status()> read_suppression;  // before addresses are listed; a failure forbids it
  };

  explicit frmEmailMergeTool(Context context);

  // The books, and the commands on them.
  ui::ListBox lstBook{"lstBook"};
  ui::Button cmdOpen{"cmdOpen", "&Open ..."};
  ui::Button cmdDelete{"cmdDelete", "&Delete"};
  ui::Button cmdDeleteAll{"cmdDeleteAll", "Delete &All"};
  // The merged addresses, and the commands on them.
  ui::ListBox lstAddress{"lstAddress"};
  ui::Button cmdExtract{"cmdExtract", "&Extract"};
  ui::Button cmdClear{"cmdClear", "&Clear"};
  ui::Button cmdSave{"cmdSave", "&Save ..."};
  ui::Button cmdOK{"cmdOK", "OK"};

  [[nodiscard]] std::vector<ui::Control*> Controls() override;
  void Load() override;

 private:
  void lstBook_Click();
  void cmdOpen_Click();
  void cmdDelete_Click();
  void cmdDeleteAll_Click();
  void cmdExtract_Click();
  void cmdClear_Click();
  void cmdSave_Click();

  void OnCommand(ui::Button& button, void (frmEmailMergeTool::*command)());
  void AddBooks(const FileDialogs::Choice& choice);
  void FillBooks();
  // Asks for the file to save to. Empty when the user has cancelled.
  [[nodiscard]] std::string ChooseTarget();
  BoxAnswer Tell(const std::string& text, BoxIcon icon, BoxButtons buttons = BoxButtons::kOk);

  Context context_;
  bool busy_ = false;  // a command is under way and pumps; other commands do nothing until it ends
};

}  // namespace quenlar
