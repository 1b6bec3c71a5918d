// Binding of a virtual report list: it keeps no cell, it asks the model for those that are seen.
#pragma once

#include <optional>
#include <vector>

#include "ui/row_order.h"
#include "ui/win32/control_binding.h"

namespace quenlar::ui {

class ListViewBinding final : public ControlBinding {
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
  // What the user has done with the rows, by the table's rows, not by their places in the list.
  struct Marks {
    std::vector<std::uint32_t> rows;
    std::optional<std::uint32_t> focused;
    std::optional<std::uint32_t> anchor;  // from which Shift marks
  };
  [[nodiscard]] Marks TakeMarks() const;
  void MarkOnly(const Marks& marks);
  void Run(const ListView::Command& command);

  ListView& list_;
  RowOrder order_;
  struct ColumnWidth {
    int own;    // without the share of what the window has grown; negative for one made narrower than that share
    int least;  // it is shown no narrower
    int shown;  // as last set; another width is the user's
  };
  std::vector<ColumnWidth> widths_;
  int grown_ = 0;
  int dpi_;  // for which the columns have their widths
};

}  // namespace quenlar::ui
