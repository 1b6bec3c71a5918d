// Measures the program with its window: start, idle time, memory. Run by bench/window.sh.
#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <vector>

#include "project/data_file.h"
#include "ui/win32/resource.h"
#include "ui/win32/windows_api.h"
#include "window/program.h"

// After windows.h, whose types it uses.
#include <psapi.h>

namespace quenlar::window_test {
namespace {

double MillisecondsSince(LONGLONG begun) {
  LARGE_INTEGER now, frequency;
  QueryPerformanceCounter(&now);
  QueryPerformanceFrequency(&frequency);
  return 1e3 * static_cast<double>(now.QuadPart - begun) / static_cast<double>(frequency.QuadPart);
}

LONGLONG Now() {
  LARGE_INTEGER now;
  QueryPerformanceCounter(&now);
  return now.QuadPart;
}

double ProcessorMilliseconds(const Program& program) {
  FILETIME created, ended, kernel, user;
  GetProcessTimes(program.process(), &created, &ended, &kernel, &user);
  const auto ticks = [](FILETIME time) {
    return static_cast<double>((static_cast<ULONGLONG>(time.dwHighDateTime) << 32) | time.dwLowDateTime);
  };
  return (ticks(kernel) + ticks(user)) / 1e4;
}

double PrivateMegabytes(const Program& program) {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  GetProcessMemoryInfo(program.process(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
  return static_cast<double>(counters.PrivateUsage) / (1 << 20);
}

void MeasureStart() {
  std::vector<double> starts;
  for (int i = 0; i < 9; ++i) {
    Program program;
    const LONGLONG begun = Now();
    program.Start();
    starts.push_back(MillisecondsSince(begun));
  }
  std::sort(starts.begin(), starts.end());
  std::printf("start to visible window, ms (median, worst of 9): %.0f, %.0f\n", starts[4], starts[8]);
}

void MeasureIdle() {
  Program program;
  program.Start();
  const double used = ProcessorMilliseconds(program);
  const LONGLONG begun = Now();
  (void)WaitUntil([&] { return MillisecondsSince(begun) > 10000; });
  std::printf("idle, processor share over 10 s: %.2f %%\n",
              100 * (ProcessorMilliseconds(program) - used) / MillisecondsSince(begun));
}

// Memory and the time from opening a project to its rows, for reports of several lengths.
void MeasureRows(int rows) {
  Program program;
  std::string report = HeaderLine() + "\r\n\r\n";
  for (int i = 0; i < rows; ++i) {
    const std::string number = std::to_string(i);
    report += number + "     person" + number + "@mail.test     http://www.cars.example/page" + number +
              ".html     The title of page " + number + "\r\n";
  }
  program.WriteFile("report/cars_example.rpt", report);
  program.Start();
  const double before = PrivateMegabytes(program);
  const LONGLONG begun = Now();
  program.Main().Control(IDC_CMBURL).Type("www.cars.example");
  const Window list = program.Main().Control(IDC_LSTMAIL);
  if (!WaitUntil([&] { return list.Rows() == rows; })) throw std::runtime_error("the rows do not come");
  const double opened = MillisecondsSince(begun);
  const double grown = PrivateMegabytes(program) - before;
  std::printf("%6d rows: opened in %.0f ms, %.1f MB more, %.0f bytes a row\n", rows, opened, grown,
              grown * (1 << 20) / rows);
}

}  // namespace
}  // namespace quenlar::window_test

int main() {
  using namespace quenlar::window_test;
  try {
    MeasureStart();
    MeasureIdle();
    for (const int rows : {1000, 10000, 100000}) MeasureRows(rows);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "window_bench: %s\n", error.what());
    return 1;
  }
}
