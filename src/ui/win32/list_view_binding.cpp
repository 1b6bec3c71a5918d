#include "ui/win32/list_view_binding.h"

#include <algorithm>

#include "base/ascii.h"
#include "platform/win32/wide.h"
#include "ui/win32/color_scheme.h"

namespace quenlar::ui {
namespace {

// The native list shows no more of a cell than this.
constexpr std::size_t kShownUnits = 259;

// A column becomes no narrower with the window, at 96 dots per inch, unless the user has made it so.
constexpr int kLeastWidth = 40;

}  // namespace

ListViewBinding::ListViewBinding(ListView& list, HWND window, BindingHost& host)
    : BindingTo(list, window, host),
      order_([&list](std::uint32_t row, int column) {
        return list.CellText ? list.CellText(row, column) : std::string();
      }),
      dpi_(host.dpi()) {}

void ListViewBinding::Start() {
  ControlBinding::Start();
  SetWindowTheme(window(), L"Explorer", nullptr);
  Send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
  AddColumns();
  Flush();
}

void ListViewBinding::AddColumns() {
  for (std::size_t i = 0; i < model().columns.size(); ++i) {
    std::wstring caption = win32::ToWide(model().columns[i].caption);
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    column.pszText = caption.data();
    column.cx = Scaled(model().columns[i].width);
    column.iSubItem = static_cast<int>(i);
    Send(LVM_INSERTCOLUMNW, i, &column);
    widths_.push_back({column.cx, std::min(column.cx, Scaled(kLeastWidth)), column.cx});
  }
}

// What the window is wider than at its smallest goes to the columns that are not fixed, in equal shares; what the user
// has made of the widths by hand stays, and grows with the resolution. A width comes back with the window's.
void ListViewBinding::OnPlaced(int grown) {
  const auto& columns = model().columns;
  const auto fixed = std::count_if(columns.begin(), columns.end(), [](const auto& column) { return column.fixed; });
  const int sharing = static_cast<int>(columns.size()) - static_cast<int>(fixed);
  int shares = 0;  // given so far
  for (std::size_t i = 0; i < widths_.size(); ++i) {
    const bool shares_in = !columns[i].fixed;
    if (shares_in) ++shares;
    const auto share = [&](int pixels) {
      return shares_in ? pixels * shares / sharing - pixels * (shares - 1) / sharing : 0;
    };
    ColumnWidth& width = widths_[i];
    const int now = static_cast<int>(Send(LVM_GETCOLUMNWIDTH, i));
    if (now != width.shown) width = {now - share(grown_), std::min(now, MulDiv(kLeastWidth, dpi_, 96)), now};
    width.own = MulDiv(width.own, host().dpi(), dpi_);
    width.least = MulDiv(width.least, host().dpi(), dpi_);
    width.shown = std::max(width.own + share(grown), width.least);
    Send(LVM_SETCOLUMNWIDTH, i, width.shown);
  }
  grown_ = grown;
  dpi_ = host().dpi();
}

// Rows that are added can wait to be shown together with others; another table cannot, since the order of the rows
// belongs to the table.
void ListViewBinding::Apply(Aspect aspect) {
  ControlBinding::Apply(aspect);
  if (aspect == Aspect::kItems) {
    if (model().rows() < order_.rows()) {
      Flush();
    } else {
      host().RequestFlush();
    }
  }
  if (aspect == Aspect::kSelection && !model().selected()) ListView_SetItemState(window(), -1, 0, LVIS_SELECTED);
}

void ListViewBinding::Flush() {
  const std::uint32_t before = order_.rows();
  if (model().rows() == before) return;
  const bool grew = model().rows() > before;
  const bool grew_at_end = grew && !order_.key();
  const Marks marks = grew && !grew_at_end ? TakeMarks() : Marks();
  order_.SetRows(model().rows());
  Send(LVM_SETITEMCOUNT, model().rows(),
       static_cast<LPARAM>(grew_at_end ? LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL : LVSICF_NOSCROLL));
  if (!grew_at_end) MarkOnly(marks);
}

ListViewBinding::Marks ListViewBinding::TakeMarks() const {
  const auto row_at = [&](LRESULT position) {
    const auto place = static_cast<std::uint32_t>(position);
    return position >= 0 && place < order_.rows() ? std::optional(order_.RowAt(place)) : std::nullopt;
  };
  return {MarkedRows(), row_at(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED)),
          row_at(Send(LVM_GETSELECTIONMARK))};
}

// A few marked rows stay marked at their new places; following very many would take long and show little.
void ListViewBinding::MarkOnly(const Marks& marks) {
  constexpr std::size_t kFollowed = 32;
  const auto position_of = [&](std::uint32_t row) { return static_cast<int>(order_.PositionOf(row)); };
  ListView_SetItemState(window(), -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
  if (marks.rows.size() <= kFollowed) {
    for (const std::uint32_t row : marks.rows) {
      ListView_SetItemState(window(), position_of(row), LVIS_SELECTED, LVIS_SELECTED);
    }
  }
  if (marks.focused) ListView_SetItemState(window(), position_of(*marks.focused), LVIS_FOCUSED, LVIS_FOCUSED);
  Send(LVM_SETSELECTIONMARK, 0, marks.anchor ? position_of(*marks.anchor) : -1);
}

LRESULT ListViewBinding::OnNotify(const NMHDR& header) {
  auto* given = const_cast<NMHDR*>(&header);
  switch (header.code) {
    case static_cast<UINT>(LVN_GETDISPINFOW):
      FillCell(*reinterpret_cast<NMLVDISPINFOW*>(given));
      return 0;
    case static_cast<UINT>(NM_CUSTOMDRAW):
      return Draw(*reinterpret_cast<NMLVCUSTOMDRAW*>(given));
    case static_cast<UINT>(LVN_ODFINDITEMW):
      return FindText(*reinterpret_cast<NMLVFINDITEMW*>(given));
    case static_cast<UINT>(LVN_COLUMNCLICK):
      SortBy(reinterpret_cast<NMLISTVIEW*>(given)->iSubItem);
      return 0;
    case static_cast<UINT>(LVN_ITEMCHANGED):
    case static_cast<UINT>(LVN_ODSTATECHANGED):
      TellSelection();
      return 0;
    case static_cast<UINT>(NM_CLICK):
    case static_cast<UINT>(NM_RCLICK):
      OnMouseButton(*reinterpret_cast<NMITEMACTIVATE*>(given));
      return 0;
    case static_cast<UINT>(NM_DBLCLK):
      if (model().DblClick) model().DblClick();
      return 0;
    default:
      return 0;
  }
}

void ListViewBinding::FillCell(NMLVDISPINFOW& wanted) const {
  const auto position = static_cast<std::uint32_t>(wanted.item.iItem);
  if (!(wanted.item.mask & LVIF_TEXT) || !model().CellText || position >= order_.rows()) return;
  const std::wstring text = win32::ToWide(model().CellText(order_.RowAt(position), wanted.item.iSubItem));
  const std::size_t room = std::min(static_cast<std::size_t>(wanted.item.cchTextMax) - 1, kShownUnits);
  const std::size_t length = std::min(text.size(), room);
  std::copy_n(text.begin(), length, wanted.item.pszText);
  wanted.item.pszText[length] = L'\0';
}

LRESULT ListViewBinding::Draw(NMLVCUSTOMDRAW& draw) const {
  switch (draw.nmcd.dwDrawStage) {
    case CDDS_PREPAINT:
      return model().CellColor && !IsHighContrast() ? CDRF_NOTIFYITEMDRAW : CDRF_DODEFAULT;
    case CDDS_ITEMPREPAINT:
      return CDRF_NOTIFYSUBITEMDRAW;
    case CDDS_ITEMPREPAINT | CDDS_SUBITEM: {
      const auto position = static_cast<std::uint32_t>(draw.nmcd.dwItemSpec);
      if (position >= order_.rows()) return CDRF_DODEFAULT;
      const auto color = model().CellColor(order_.RowAt(position), draw.iSubItem);
      draw.clrText = color ? static_cast<COLORREF>(*color) : GetSysColor(COLOR_WINDOWTEXT);
      return CDRF_NEWFONT;
    }
    default:
      return CDRF_DODEFAULT;
  }
}

// Typing goes to the next row whose sorted column (the first, while unsorted) begins with what was typed.
int ListViewBinding::FindText(const NMLVFINDITEMW& wanted) const {
  if (!(wanted.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) || !model().CellText || order_.rows() == 0) return -1;
  const std::string prefix = Lower(win32::FromWide(wanted.lvfi.psz));
  const int column = order_.key() ? order_.key()->column : 0;
  for (std::uint32_t step = 0; step < order_.rows(); ++step) {
    const std::uint32_t position = (static_cast<std::uint32_t>(std::max(wanted.iStart, 0)) + step) % order_.rows();
    if (StartsWithIgnoreCase(model().CellText(order_.RowAt(position), column), prefix))
      return static_cast<int>(position);
  }
  return -1;
}

void ListViewBinding::SortBy(int column) {
  Flush();
  const Marks marks = TakeMarks();
  order_.SortBy(column);
  ShowSortArrow();
  MarkOnly(marks);
  if (Send(LVM_GETSELECTEDCOUNT) > 0) Send(LVM_ENSUREVISIBLE, order_.PositionOf(marks.rows.front()), FALSE);
  InvalidateRect(window(), nullptr, TRUE);
}

void ListViewBinding::ShowSortArrow() {
  const HWND header = ListView_GetHeader(window());
  for (int i = 0; i < static_cast<int>(model().columns.size()); ++i) {
    HDITEMW item{};
    item.mask = HDI_FORMAT;
    SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
    item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
    if (order_.key() && order_.key()->column == i) {
      item.fmt |= order_.key()->direction == RowOrder::Direction::kUp ? HDF_SORTUP : HDF_SORTDOWN;
    }
    SendMessageW(header, HDM_SETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
  }
}

void ListViewBinding::OnMouseButton(const NMITEMACTIVATE& click) {
  if (click.iItem < 0 && model().Miss) model().Miss();
}

// Enter is for the row, not for the default button.
bool ListViewBinding::OnKey(WPARAM key) {
  if (key == VK_RETURN) {
    if (model().DblClick) model().DblClick();
    return true;
  }
  if (!ControlHeld()) return false;
  if (key == 'A') {
    SelectAll();
    return true;
  }
  for (const ListView::Command& command : model().commands) {
    if (command.control_key == 0 || key != static_cast<WPARAM>(command.control_key)) continue;
    Run(command);
    return true;
  }
  return false;
}

void ListViewBinding::SelectAll() { ListView_SetItemState(window(), -1, LVIS_SELECTED, LVIS_SELECTED); }

// The row with the focus mark, as long as it is marked, else the first that is; below 0 without any.
int ListViewBinding::SelectedPosition() const {
  const LRESULT focused = Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED | LVNI_FOCUSED);
  return static_cast<int>(focused >= 0 ? focused : Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

// The model knows one row.
void ListViewBinding::TellSelection() {
  const int position = SelectedPosition();
  if (position < 0 || static_cast<std::uint32_t>(position) >= order_.rows()) {
    model().UserSelect(std::nullopt);
  } else {
    model().UserSelect(order_.RowAt(static_cast<std::uint32_t>(position)));
  }
}

std::vector<std::uint32_t> ListViewBinding::MarkedRows() const {
  std::vector<std::uint32_t> rows;
  LRESULT position = -1;
  while ((position = Send(LVM_GETNEXTITEM, static_cast<WPARAM>(position), LVNI_SELECTED)) >= 0) {
    if (static_cast<std::uint32_t>(position) < order_.rows())
      rows.push_back(order_.RowAt(static_cast<std::uint32_t>(position)));
  }
  return rows;
}

void ListViewBinding::Run(const ListView::Command& command) {
  const std::vector<std::uint32_t> rows = MarkedRows();
  if (command.run && command.CanRun(!rows.empty())) command.run(rows);
}

// At the row that the model knows, or at the edge of the list that is nearest to it.
POINT ListViewBinding::KeyboardPlace() const {
  RECT row{}, inside{};
  const int position = SelectedPosition();
  if (position >= 0) ListView_GetItemRect(window(), position, &row, LVIR_LABEL);
  GetClientRect(window(), &inside);
  POINT place{std::clamp(row.left, inside.left, inside.right), std::clamp(row.bottom, inside.top, inside.bottom)};
  ClientToScreen(window(), &place);
  return place;
}

// Without anything to do there is no menu.
void ListViewBinding::OnContextMenu(POINT place) {
  const bool any_marked = Send(LVM_GETSELECTEDCOUNT) > 0;
  const auto& commands = model().commands;
  if (std::none_of(commands.begin(), commands.end(), [&](const auto& one) { return one.CanRun(any_marked); })) return;
  if (place.x == -1 && place.y == -1) place = KeyboardPlace();
  const HMENU menu = CreatePopupMenu();
  for (std::size_t i = 0; i < commands.size(); ++i) {
    if (!commands[i].CanRun(any_marked)) continue;
    if (commands[i].apart && GetMenuItemCount(menu) > 0) AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(menu, MF_STRING, i + 1, win32::ToWide(commands[i].caption).c_str());
  }
  const int chosen =
      TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, place.x, place.y, 0, GetParent(window()), nullptr);
  DestroyMenu(menu);
  if (chosen > 0) Run(model().commands[static_cast<std::size_t>(chosen) - 1]);
}

}  // namespace quenlar::ui
