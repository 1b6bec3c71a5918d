#include "window/bench/collection_bench.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "collection/collection.h"
#include "collection/database.h"
#include "platform/win32/files.h"
#include "window/bench/stopwatch.h"
#include "window/program.h"
#include "window/usage.h"

namespace quenlar::window_test {
namespace {

constexpr int kAddresses = 100'000;

// Ten sightings an address, ten addresses a page; the first address stands on a tenth of the pages.
constexpr const char* kRows = R"sql(
BEGIN;
CREATE TEMP TABLE numbers AS WITH RECURSIVE n (i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM n WHERE i < 100000)
  SELECT i FROM n;
INSERT INTO hosts (id, origin, site) SELECT i, 'https://www.site' || i || '.example', 'site' || i || '.example'
  FROM numbers WHERE i <= 1000;
INSERT INTO pages (id, key, host, url, depth, rank, state, title)
  SELECT i, i, 1 + i % 1000, 'https://www.site' || (1 + i % 1000) || '.example/people/page' || i || '.html', 1, 1,
         'read', 'The people of page ' || i FROM numbers;
INSERT INTO addresses (id, address, first_seen)
  SELECT i, 'person' || (i * 7919 % 100000) || '@site' || (1 + i % 1000) || '.example', 1700000000 + i FROM numbers;
INSERT INTO sightings (address, page, place, written, first_seen, last_seen)
  SELECT a.i, 1 + (a.i + b.i * 10007) % 100000, 'text', 'person@site.example', 1700000000 + a.i, 1700500000
  FROM numbers a, numbers b WHERE b.i <= 10;
INSERT OR IGNORE INTO sightings (address, page, place, written, first_seen, last_seen)
  SELECT 1, i, 'mailto', 'person@site.example', 1700000001, 1700500000 FROM numbers WHERE i % 10 = 0;
DROP TABLE numbers;
COMMIT;
)sql";

void Expect(const Status& status) {
  if (!status.ok()) throw std::runtime_error(status.message());
}

void MakeCollection(const Program& program) {
  std::filesystem::create_directories(program.folder() / "data");
  const std::string path = Utf8((program.folder() / "data" / "people.sqlite").wstring());
  Win32Files files;
  Expect(Collection::Open(files, path).status());
  auto database = Database::Open(path, Database::Mode::kWrite);
  Expect(database.status());
  Expect(database.value()->Execute(kRows));
}

// As if with the mouse. Ends when the list has been drawn.
double SortBy(const Window& list, int column) {
  const Window header(reinterpret_cast<HWND>(list.Send(LVM_GETHEADER)));
  int left = 0;
  for (int i = 0; i < column; ++i) left += list.ColumnWidth(i);
  const Stopwatch watch;
  for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP}) header.Send(message, 0, MAKELPARAM(left + 20, 8));
  RedrawWindow(list.handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  return watch.Milliseconds();
}

// Ends when the list has been drawn there.
double JumpTo(const Window& list, int row) {
  const Stopwatch watch;
  list.Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(row));
  RedrawWindow(list.handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  return watch.Milliseconds();
}

// From the first row to the last one in a hundred jumps. The median of their times.
double ScrollThrough(const Window& list) {
  constexpr int kJumps = 100;
  std::vector<double> jumps;
  for (int i = 1; i <= kJumps; ++i) jumps.push_back(JumpTo(list, i * (kAddresses / kJumps) - 1));
  std::nth_element(jumps.begin(), jumps.begin() + kJumps / 2, jumps.end());
  return jumps[kJumps / 2];
}

// Opens "Where it was found" for the marked row, and closes it.
double AskWhereFound(const Program& program, const Window& list, int row, int places) {
  JumpTo(list, row);
  list.MouseClick(list.RowPlace(row));
  if (!WaitUntil([&] { return list.MarkedRows() == std::vector<int>{row}; })) throw std::runtime_error("no mark");
  list.MouseRightClick(list.RowPlace(row));
  HWND menu = nullptr;
  if (!WaitUntil([&] { return (menu = FindWindowW(L"#32768", nullptr)) && IsWindowVisible(menu); })) {
    throw std::runtime_error("no menu");
  }
  const Stopwatch watch;
  PostMessageW(menu, WM_CHAR, 'w', 0);
  const Window window = program.WaitForWindow("Where it was found");
  if (!WaitUntil([&] { return window.Control("lstPages").Rows() == places; })) {
    throw std::runtime_error("other places than those that were put in");
  }
  const double opened = watch.Milliseconds();
  window.Control(IDCANCEL).Click();
  if (!WaitUntil([&] { return !window && program.Main().Enabled(); })) throw std::runtime_error("the window stays");
  return opened;
}

}  // namespace

void MeasureCollection() {
  Program program;
  MakeCollection(program);
  StoreDefaultsWithoutUpgradeCheck();
  StoreWebSetting("Collect", "1");
  program.Start();
  const Window main = program.Main(), list = main.Control("lstMail");
  main.Control("cmbURL").Type("");
  if (!WaitUntil([&] { return list.Rows() == 0; })) throw std::runtime_error("rows of nothing");
  const double before = MemoryOf(program.process()).alone;
  const Stopwatch watch;
  main.Control("cmbURL").Type("people");
  if (!WaitUntil([&] { return list.Rows() == kAddresses && main.Control("cmdExtract").Enabled(); })) {
    throw std::runtime_error("the rows do not come");
  }
  const double opened = watch.Milliseconds(), memory = MemoryOf(program.process()).alone - before;
  std::printf("\n| a collection of %d addresses and 1,000,000 sightings | |\n|---|---|\n", kAddresses);
  std::printf("| opened in, ms | %.0f |\n", opened);
  std::printf("| megabytes in memory | %.1f |\n", memory);
  JumpTo(list, kAddresses - 1);
  JumpTo(list, 0);
  std::printf("| to the last row, ms | %.1f |\n", JumpTo(list, kAddresses - 1));
  JumpTo(list, 0);
  std::printf("| a screenful on the way from the first row to the last, ms | %.1f |\n", ScrollThrough(list));
  const char* const columns[] = {"#", "address", "URL", "title"};
  for (int column = 0; column < 4; ++column) {
    const double up = SortBy(list, column), down = SortBy(list, column);
    std::printf("| sorted by %s, and turned round, ms | %.0f, %.0f |\n", columns[column], up, down);
  }
  SortBy(list, 0);
  std::printf("| \"Where it was found\" of an address with 10 sightings, ms | %.0f |\n",
              AskWhereFound(program, list, 50'000, 10));
  std::printf("| the same with 10,010 sightings, ms | %.0f |\n", AskWhereFound(program, list, 0, 10'010));
}

}  // namespace quenlar::window_test
