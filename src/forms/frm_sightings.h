// Where an address of a collection was found: every page and place, with the times.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/shell.h"
#include "ui/controls.h"

namespace quenlar {

// One sighting, as the window shows it.
struct SightingRow {
  std::string page, title, place;
  std::int64_t first_seen = 0, last_seen = 0;  // seconds since 1970 UTC
  bool gone = false;                           // it did not stand there any more when the page was read again
};

// A window that keeps its rows until it is filled for the next address, which may happen while it is shown.
class frmSightings final : public ui::Form {
 public:
  // The shell must outlive the window.
  explicit frmSightings(Shell& shell);

  ui::Label lblAddress{"lblAddress"};
  ui::ListView lstPages{"lstPages"};
  ui::Button cmdOpen{"cmdOpen", "&Open page"};
  ui::Button cmdCopy{"cmdCopy", "&Copy"};
  ui::Button cmdOK{"cmdOK", "Close"};

  void Fill(const std::string& address, std::vector<SightingRow> rows);

  [[nodiscard]] std::vector<ui::Control*> Controls() override;

 private:
  [[nodiscard]] std::string Cell(std::uint32_t row, int column) const;
  void OpenPage(std::uint32_t row) const;
  void Copy(const std::vector<std::uint32_t>& rows) const;

  Shell& shell_;
  std::vector<SightingRow> rows_;
};

}  // namespace quenlar
