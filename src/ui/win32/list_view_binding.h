// The binding of a list view. It keeps no cells: the native control asks for those that it draws, and they come from
// the model. It keeps the order of the rows, the widths of the columns and which rows are marked.
#pragma once

#include <optional>
#include <vector>

#include "ui/row_order.h"
#include "ui/win32/control_binding.h"

namespace quenlar::ui {

class ListViewBinding final : public BindingTo<ListView> {
 public:
  ListViewBinding(ListView& list, HWND window, BindingHost& host);
  void Start() override;
  LRESULT OnNotify(const NMHDR& header) override;
  void OnContextMenu(POINT place) override;
  bool OnKey(WPARAM key) override;
  void OnPlaced(int grown) override;
  void Flush() override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  void AddColumns();
  void ShowSortArrow();
  void SortBy(int column);
  void FillCell(NMLVDISPINFOW& wanted) const;
  LRESULT Draw(NMLVCUSTOMDRAW& draw) const;
  int FindText(const NMLVFINDITEMW& wanted) const;
  void OnMouseButton(const NMITEMACTIVATE& click);
  [[nodiscard]] int SelectedPosition() const;
  void TellSelection();
  void SelectAll();
  [[nodiscard]] std::vector<std::uint32_t> MarkedRows() const;
  [[nodiscard]] POINT KeyboardPlace() const;
  // Which rows the user has marked and where the focus is. These are rows of the table and not places in the list, so
  // they survive sorting.
  struct Marks {
    std::vector<std::uint32_t> rows;
    std::optional<std::uint32_t> focused;
    std::optional<std::uint32_t> anchor;  // the row from which Shift marks
  };
  [[nodiscard]] Marks TakeMarks() const;
  void MarkOnly(const Marks& marks);
  void Run(const ListView::Command& command);

  RowOrder order_;
  struct ColumnWidth {
    int own;    // the width without the column's share of the window's growth; may be negative
    int least;  // the column is never shown narrower
    int shown;  // the width that the binding has set; when the column has another one, the user has set it
  };
  std::vector<ColumnWidth> widths_;
  int grown_ = 0;
  int dpi_;  // for which the columns have their widths
};

}  // namespace quenlar::ui
