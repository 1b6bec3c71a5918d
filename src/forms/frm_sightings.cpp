#include "forms/frm_sightings.h"

#include <numeric>
#include <utility>

#include "base/number.h"
#include "engine/time_text.h"
#include "forms/open_web_page.h"

namespace quenlar {
namespace {

constexpr int kPageColumn = 0, kPlaceColumn = 1, kFirstColumn = 2, kLastColumn = 3, kTitleColumn = 4;
constexpr int kColumns = 5;

// "2026-11-22 13:20", which sorts by itself.
std::string ShortTime(std::int64_t seconds) {
  std::string text = TimeText(seconds).substr(0, 16);
  text[10] = ' ';
  return text;
}

}  // namespace

frmSightings::frmSightings(Shell& shell) : Form("frmSightings", "Where it was found"), shell_(shell) {
  lstPages.columns = {{"Page", 229},
                      {"Place", 64, true},
                      {"First seen (UTC)", 114, true},
                      {"Last seen (UTC)", 142, true},  // has room for ", gone"
                      {"Title", 90}};
  lstPages.CellText = [this](std::uint32_t row, int column) { return Cell(row, column); };
  lstPages.DblClick = [this] {
    if (lstPages.selected()) OpenPage(*lstPages.selected());
  };
  lstPages.Miss = [this] { lstPages.ClearSelection(); };
  lstPages.commands = {
      {"&Copy\tCtrl+C", 'C', [this](const auto& rows) { Copy(rows); }},
      {"&Open page", 0, [this](const auto& rows) { OpenPage(rows.front()); }},
  };
  cmdOpen.Click = [this] {
    if (!rows_.empty()) OpenPage(lstPages.selected().value_or(0));
  };
  cmdCopy.Click = [this] {
    std::vector<std::uint32_t> rows(rows_.size());
    std::iota(rows.begin(), rows.end(), 0);
    if (lstPages.selected()) rows = {*lstPages.selected()};
    Copy(rows);
  };
  cmdOK.Click = [this] { Close(); };
}

std::vector<ui::Control*> frmSightings::Controls() { return {&lblAddress, &lstPages, &cmdOpen, &cmdCopy, &cmdOK}; }

void frmSightings::Fill(const std::string& address, std::vector<SightingRow> rows) {
  lstPages.SetRows(0);
  rows_ = std::move(rows);
  const std::size_t count = rows_.size();
  lblAddress.SetText(address + " was found in " + Counted(count, "place") + ":");
  lstPages.SetRows(static_cast<std::uint32_t>(count));
  cmdOpen.SetEnabled(count > 0);
  cmdCopy.SetEnabled(count > 0);
}

std::string frmSightings::Cell(std::uint32_t row, int column) const {
  if (row >= rows_.size()) return "";
  const SightingRow& sighting = rows_[row];
  switch (column) {
    case kPageColumn:
      return sighting.page;
    case kPlaceColumn:
      return sighting.place;
    case kFirstColumn:
      return ShortTime(sighting.first_seen);
    case kLastColumn:
      return ShortTime(sighting.last_seen) + (sighting.gone ? ", gone" : "");
    case kTitleColumn:
      return sighting.title;
    default:
      return "";
  }
}

void frmSightings::OpenPage(std::uint32_t row) const {
  if (row < rows_.size()) OpenWebPage(shell_, rows_[row].page);
}

// Whole rows, with TABs between their cells, one a line.
void frmSightings::Copy(const std::vector<std::uint32_t>& rows) const {
  std::string text;
  for (const std::uint32_t row : rows) {
    if (!text.empty()) text += "\r\n";
    for (int column = 0; column < kColumns; ++column) {
      if (column > 0) text += '\t';
      text += Cell(row, column);
    }
  }
  shell_.CopyToClipboard(text);
}

}  // namespace quenlar
