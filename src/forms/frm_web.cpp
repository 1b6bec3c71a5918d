#include "forms/frm_web.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/ascii.h"
#include "base/number.h"
#include "base/product.h"
#include "settings/web_checks.h"

namespace quenlar {
namespace {

constexpr std::size_t kGeneralTab = 0, kReachTab = 1, kMannersTab = 2, kNeverTab = 3;
constexpr std::int32_t kSecond = 1000;
constexpr std::size_t kMostDigits = 10;

constexpr const char* kNeverNote =
    "Holds at once, for classic projects too: what is added is taken out of all collections and reports. "
    "What is removed here does not come back by itself.";

bool AreDigits(std::string_view text) { return text.find_first_not_of("0123456789") == std::string_view::npos; }

std::string Bounds(const std::string& lowest, const std::string& highest) {
  return "please enter a number between " + lowest + " and " + highest + " !";
}

}  // namespace

std::string PauseText(std::int32_t milliseconds) {
  std::string text = std::to_string(milliseconds / kSecond);
  if (milliseconds % kSecond == 0) return text;
  text += "." + std::to_string(kSecond + milliseconds % kSecond).substr(1);
  text.erase(text.find_last_not_of('0') + 1);
  return text;
}

std::optional<std::int32_t> ParsePause(std::string_view text) {
  const std::size_t point = std::min(text.find_first_of(".,"), text.size());
  const std::string_view whole = text.substr(0, point);
  std::string fraction(point < text.size() ? text.substr(point + 1) : std::string_view());
  constexpr std::size_t kDecimals = 3;
  if (whole.size() > kMostDigits || !AreDigits(whole) || whole.size() + fraction.size() == 0) return std::nullopt;
  if (fraction.size() > kDecimals || !AreDigits(fraction)) return std::nullopt;
  fraction.append(kDecimals - fraction.size(), '0');
  return RoundToInt32(LeadingNumber(whole) * kSecond + LeadingNumber(fraction));
}

frmWeb::frmWeb(Context context) : Form("frmWeb", "Web settings"), context_(std::move(context)) {
  cmbScope.editable = false;
  for (const ScopeChoice& choice : kScopeChoices) {
    std::vector<std::string> items = cmbScope.items();
    items.emplace_back(choice.name);
    cmbScope.SetItems(std::move(items));
  }
  for (ui::TextBox* number : {&txtDepth, &txtPages, &txtPause, &txtHosts}) number->max_length = kMostDigits;
  txtContact.max_length = 200;
  txtService.max_length = 254;
  tabWeb.Click = [this] { tabWeb_Click(); };
  lstNever.multi_select = true;
  lstNever.Click = [this] { cmdRemove.SetEnabled(lstNever.SelectedCount() > 0); };
  lstNever.DeleteKey = [this] { cmdRemove_Click(); };
  cmdAdd.Click = [this] { cmdAdd_Click(); };
  cmdImport.Click = [this] { cmdImport_Click(); };
  cmdRemove.Click = [this] { cmdRemove_Click(); };
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdCancel.Click = [this] { Close(); };
}

std::vector<ui::Control*> frmWeb::Controls() {
  return {&tabWeb,   &picGeneral,   &chkCollect, &txtContact, &txtService, &picReach,  &cmbScope, &txtDepth,
          &txtPages, &chkProtected, &picManners, &txtPause,   &txtHosts,   &chkRobots, &picNever, &lstNever,
          &txtNever, &cmdAdd,       &cmdImport,  &cmdRemove,  &lblNever,   &cmdOK,     &cmdCancel};
}

// What is stored counts, because the command line stores the contact and the search service too.
void frmWeb::Load() {
  const WebSettings settings = LoadWebSettings(context_.registry);
  tabWeb.Select(kGeneralTab);
  chkCollect.SetChecked(settings.collect != 0);
  cmbScope.SetText(kScopeChoices[settings.scope].name);
  txtDepth.SetText(std::to_string(settings.depth));
  txtPages.SetText(std::to_string(settings.pages_per_host));
  txtService.SetText(settings.search_service);
  chkProtected.SetChecked(settings.list_protected != 0);
  txtContact.SetText(settings.contact);
  txtPause.SetText(PauseText(settings.pause));
  txtHosts.SetText(std::to_string(settings.hosts));
  chkRobots.SetChecked(settings.obey_robots != 0);
  txtNever.SetText("");
  FillNever();
}

void frmWeb::tabWeb_Click() {
  ui::Panel* const panels[] = {&picGeneral, &picReach, &picManners, &picNever};
  for (ui::Panel* panel : panels) panel->SetVisible(false);
  if (tabWeb.selected() < std::size(panels)) panels[tabWeb.selected()]->SetVisible(true);
}

// Enter in the box of an entry is OK to the system; the entry is not lost by it.
void frmWeb::cmdOK_Click() {
  if (tabWeb.selected() == kNeverTab && !TrimBlanks(txtNever.text()).empty()) return cmdAdd_Click();
  const std::optional<WebSettings> settings = ReadControls();
  if (!settings) return;
  context_.settings = *settings;
  const Status stored = StoreWebSettings(context_.registry, *settings);
  Close();
  if (!stored.ok()) context_.boxes.Show(SentenceOf(stored), kProductCaption, BoxIcon::kExclamation, BoxButtons::kOk);
  if (context_.stored) context_.stored();
}

void frmWeb::cmdAdd_Click() {
  const std::string entry(TrimBlanks(txtNever.text()));
  if (entry.empty()) return txtNever.SetFocus();
  const auto added = context_.never.Add(entry);
  if (added.ok()) txtNever.SetText("");
  TellChange(added);
  txtNever.SetFocus();
}

void frmWeb::cmdImport_Click() {
  const auto choice = context_.dialogs.Open({.title = "Import",
                                             .filter = "Text(*.txt)|*.txt|All files(*.*)|*.*",
                                             .folder = context_.installation.program_folder,
                                             .proposed_name = ""});
  if (choice && !choice->names.empty()) TellChange(context_.never.Import(choice->names));
}

void frmWeb::cmdRemove_Click() {
  std::vector<std::string> entries;
  for (std::size_t i = 0; i < lstNever.items().size(); ++i) {
    if (lstNever.selected(i)) entries.push_back(lstNever.items()[i]);
  }
  if (entries.empty()) return;
  const Status removed = context_.never.Remove(entries);
  if (!removed.ok()) TellChange(removed);
  FillNever();
}

// A list that cannot be read is not changed either.
void frmWeb::FillNever() {
  const auto entries = context_.never.Entries();
  lstNever.SetItems(entries.ok() ? entries.value() : std::vector<std::string>());
  lblNever.SetText(entries.ok() ? kNeverNote : SentenceOf(entries.status()));
  for (ui::Button* button : {&cmdAdd, &cmdImport}) button->SetEnabled(entries.ok());
  cmdRemove.SetEnabled(false);
}

void frmWeb::TellChange(const Result<std::vector<std::string>>& change) {
  FillNever();
  std::string text = change.ok() ? "" : SentenceOf(change.status());
  for (const std::string& sentence : change.ok() ? change.value() : std::vector<std::string>()) {
    text += (text.empty() ? "" : "\r\n") + sentence + ".";
  }
  context_.boxes.Show(text, kProductCaption, change.ok() ? BoxIcon::kInformation : BoxIcon::kExclamation,
                      BoxButtons::kOk);
}

std::optional<WebSettings> frmWeb::ReadControls() {
  WebSettings settings;
  settings.collect = chkCollect.checked() ? 1 : 0;
  settings.list_protected = chkProtected.checked() ? 1 : 0;
  settings.obey_robots = chkRobots.checked() ? 1 : 0;
  const auto scope = std::find_if(std::begin(kScopeChoices), std::end(kScopeChoices),
                                  [this](const ScopeChoice& choice) { return cmbScope.text() == choice.name; });
  settings.scope = static_cast<std::int16_t>(scope - std::begin(kScopeChoices));
  const bool taken =
      TakeText(txtContact, "The contact", settings.contact, CheckContact) &&
      TakeText(txtService, "The search service", settings.search_service, CheckServiceUrl) &&
      TakeNumber(txtDepth, kReachTab, "Clicks from a start", settings.depth, &WebSettings::depth) &&
      TakeNumber(txtPages, kReachTab, "Pages of a host", settings.pages_per_host, &WebSettings::pages_per_host) &&
      TakePause(settings.pause) &&
      TakeNumber(txtHosts, kMannersTab, "Hosts at a time", settings.hosts, &WebSettings::hosts);
  return taken ? std::optional(settings) : std::nullopt;
}

bool frmWeb::TakeNumber(ui::TextBox& box, std::size_t tab, const char* what, std::int32_t& number,
                        std::int32_t WebSettings::*variable) {
  const WebRow& row = RowOf(variable);
  const std::string_view text = TrimBlanks(box.text());
  const double typed = LeadingNumber(text);
  if (text.empty() || !AreDigits(text) || typed < row.lowest || typed > row.highest) {
    Refuse(box, tab, what + (": " + Bounds(std::to_string(row.lowest), std::to_string(row.highest))));
    return false;
  }
  number = RoundToInt32(typed).value_or(row.highest);
  return true;
}

bool frmWeb::TakePause(std::int32_t& milliseconds) {
  const WebRow& row = RowOf(&WebSettings::pause);
  const auto pause = ParsePause(TrimBlanks(txtPause.text()));
  if (!pause || *pause < row.lowest || *pause > row.highest) {
    Refuse(txtPause, kMannersTab, "The pause: " + Bounds(PauseText(row.lowest), PauseText(row.highest)));
    return false;
  }
  milliseconds = *pause;
  return true;
}

// An empty box is no text at all, which is allowed.
bool frmWeb::TakeText(ui::TextBox& box, const char* what, std::string& text, std::string (*check)(const std::string&)) {
  text = std::string(TrimBlanks(box.text()));
  const std::string wrong = text.empty() ? "" : check(text);
  if (wrong.empty()) return true;
  Refuse(box, kGeneralTab, std::string(what) + " " + wrong + " !");
  return false;
}

void frmWeb::Refuse(ui::TextBox& box, std::size_t tab, const std::string& text) {
  tabWeb.Select(tab);
  context_.boxes.Show(text, kProductCaption, BoxIcon::kExclamation, BoxButtons::kOk);
  box.SetFocus();
}

}  // namespace quenlar
