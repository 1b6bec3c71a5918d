#include "forms/frm_email_merge_tool.h"

#include <utility>

#include "base/product.h"
#include "forms/dlg_select_file_info.h"

namespace quenlar {
namespace {

constexpr const char* kTitle = "Email Merge Tool";

}  // namespace

frmEmailMergeTool::frmEmailMergeTool(Context context)
    : Form("frmEmailMergeTool", "Mailing List Management Tool"), context_(context) {
  lstBook.sorted = lstBook.multi_select = true;
  lstAddress.multi_select = true;  // for copying
  lstBook.Click = [this] { lstBook_Click(); };
  lstBook.DeleteKey = [this] {
    if (cmdDelete.enabled()) cmdDelete.Click();
  };
  OnCommand(cmdOpen, &frmEmailMergeTool::cmdOpen_Click);
  OnCommand(cmdDelete, &frmEmailMergeTool::cmdDelete_Click);
  OnCommand(cmdDeleteAll, &frmEmailMergeTool::cmdDeleteAll_Click);
  OnCommand(cmdExtract, &frmEmailMergeTool::cmdExtract_Click);
  OnCommand(cmdClear, &frmEmailMergeTool::cmdClear_Click);
  OnCommand(cmdSave, &frmEmailMergeTool::cmdSave_Click);
  cmdOK.Click = [this] {
    cmdOpen.SetFocus();
    Close();
  };
}

std::vector<ui::Control*> frmEmailMergeTool::Controls() {
  return {&lstBook, &cmdOpen, &cmdDelete, &cmdDeleteAll, &lstAddress, &cmdExtract, &cmdClear, &cmdSave, &cmdOK};
}

// Every command begins by moving the focus to cmdOpen. One that comes while another one pumps is passed over.
void frmEmailMergeTool::OnCommand(ui::Button& button, void (frmEmailMergeTool::*command)()) {
  button.Click = [this, command] {
    if (std::exchange(busy_, true)) return;
    cmdOpen.SetFocus();
    (this->*command)();
    busy_ = false;
  };
}

// The addresses that were merged before are kept, but shown again only by the next extraction; books that were opened
// and not yet extracted are shown.
void frmEmailMergeTool::Load() {
  if (const Status made = context_.files.MakeFolder(context_.installation.Data()); !made.ok()) {
    Tell(SentenceOf(made), BoxIcon::kExclamation);
  }
  cmdClear.SetEnabled(false);
  cmdSave.SetEnabled(false);
  lstAddress.Clear();
  FillBooks();
}

void frmEmailMergeTool::lstBook_Click() { cmdDelete.SetEnabled(lstBook.SelectedCount() > 0); }

void frmEmailMergeTool::cmdOpen_Click() {
  const auto choice = context_.dialogs.Open({.title = "Open",
                                             .filter = "Text Files (*.txt;*.rpt)|*.txt;*.rpt",
                                             .folder = context_.installation.Report(),
                                             .proposed_name = "",
                                             .several = true});
  if (!choice) return;
  AddBooks(*choice);
  FillBooks();
}

void frmEmailMergeTool::AddBooks(const FileDialogs::Choice& choice) {
  const auto info = GetDlgSelectFileInfo(choice.names, choice.current_folder);
  if (!info) {
    context_.boxes.Show("GetDlgSelectFileInfo error !", kProductCaption, BoxIcon::kStop, BoxButtons::kOk);
    return;
  }
  for (const std::string& name : info->Files) {
    const Result<bool> added = context_.books.AddBook(info->Folder + name);
    if (added.ok()) continue;
    Tell(SentenceOf(added.status()), BoxIcon::kExclamation);
    return;
  }
}

// Shows the books, brings BookList into the list's order, and enables what can be done with them.
void frmEmailMergeTool::FillBooks() {
  std::vector<std::string> shown;
  for (const Book& book : context_.books.BookList) shown.push_back(book.ShownText());
  lstBook.SetItems(std::move(shown));
  context_.books.SyncBookListToListBox(lstBook.items());
  const bool any = !context_.books.BookList.empty();
  cmdDelete.SetEnabled(false);
  cmdDeleteAll.SetEnabled(any);
  cmdExtract.SetEnabled(any);
}

void frmEmailMergeTool::cmdDelete_Click() {
  std::vector<Book> kept;
  for (std::size_t i = 0; i < context_.books.BookList.size(); ++i) {
    if (!lstBook.selected(i)) kept.push_back(context_.books.BookList[i]);
  }
  context_.books.BookList = std::move(kept);
  FillBooks();
}

void frmEmailMergeTool::cmdDeleteAll_Click() {
  context_.books.BookList.clear();
  FillBooks();
}

void frmEmailMergeTool::cmdExtract_Click() {
  if (const Status read = context_.read_suppression(); !read.ok()) {
    Tell(SentenceOf(read), BoxIcon::kExclamation);
    return;
  }
  const std::vector<std::string> messages = context_.books.Extract(context_.files, context_.code_page, context_.loop);
  cmdDeleteAll_Click();
  lstAddress.Clear();
  std::string unread;
  for (const std::string& message : messages) unread += (unread.empty() ? "" : "\r\n") + message;
  if (!unread.empty()) Tell(unread, BoxIcon::kExclamation);
  const AddressList& addresses = context_.books.Addresses;
  if (addresses.Count() == 0) {
    Tell("No valid Email address are available !", BoxIcon::kInformation);
    return;
  }
  cmdClear.SetEnabled(true);
  cmdSave.SetEnabled(false);
  if (addresses.Count() > kMaxListed) {
    Tell("Overflow !", BoxIcon::kExclamation);
    return;
  }
  lstAddress.SetItems({addresses.begin(), addresses.end()});
  cmdSave.SetEnabled(true);
}

void frmEmailMergeTool::cmdClear_Click() {
  context_.books.Addresses.Clear();
  lstAddress.Clear();
  cmdSave.SetEnabled(false);
  cmdClear.SetEnabled(false);
}

void frmEmailMergeTool::cmdSave_Click() {
  const std::string path = ChooseTarget();
  if (path.empty()) {
    Tell("Canceled selection !", BoxIcon::kInformation);
    return;
  }
  const Status saved = context_.books.Save(context_.files, context_.code_page, path);
  if (!saved.ok()) Tell(SentenceOf(saved), BoxIcon::kExclamation);
}

// Asks before a file is replaced; No leads back to the dialog, which proposes its own name again.
std::string frmEmailMergeTool::ChooseTarget() {
  for (;;) {
    const auto path = context_.dialogs.Save({.title = "Save As",
                                             .filter = "Text Files (*.txt)|*.txt",
                                             .folder = context_.installation.Report(),
                                             .proposed_name = "AddressBook1.txt"});
    if (!path || path->empty()) return "";
    if (!context_.files.FileExists(*path)) return *path;
    const std::string question = FileTitleOf(*path) + " file existed , Overwrite it ?";
    if (Tell(question, BoxIcon::kExclamation, BoxButtons::kYesNo) == BoxAnswer::kYes) return *path;
  }
}

BoxAnswer frmEmailMergeTool::Tell(const std::string& text, BoxIcon icon, BoxButtons buttons) {
  return context_.boxes.Show(text, kTitle, icon, buttons);
}

}  // namespace quenlar
