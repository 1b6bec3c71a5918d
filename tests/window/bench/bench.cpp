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

// What the program alone holds; Wine does not tell that, and there it is all that is in memory of the process.
double Megabytes(const Program& program) {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  GetProcessMemoryInfo(program.process(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
  const SIZE_T bytes = counters.PrivateUsage != 0 ? counters.PrivateUsage : counters.WorkingSetSize;
  return static_cast<double>(bytes) / (1 << 20);
}

// As bench.sh reads it.
void PrintGoal(const char* name, double most, double measured) {
  std::printf("Goal: %s (at most %.2f). Measured: %.2f, %s.\n", name, most, measured,
              measured <= most ? "met" : "**not met**");
}

void MeasureStart() {
  std::vector<double> shown, worked;
  double megabytes = 0;
  for (int i = 0; i < 9; ++i) {
    Program program;
    const LONGLONG begun = Now();
    program.Start();
    shown.push_back(MillisecondsSince(begun));
    worked.push_back(ProcessorMilliseconds(program) / 1000);
    megabytes = std::max(megabytes, Megabytes(program));
  }
  std::sort(shown.begin(), shown.end());
  std::sort(worked.begin(), worked.end());
  std::printf("From the start to the visible window, of nine: median %.0f ms, worst %.0f ms.\n\n", shown[4], shown[8]);
  PrintGoal("window: seconds of processor time until it is there, median of nine", 0.5, worked[4]);
  PrintGoal("window: megabytes with an empty list", 30, megabytes);
}

void MeasureIdle() {
  Program program;
  program.Start();
  const double used = ProcessorMilliseconds(program);
  const LONGLONG begun = Now();
  (void)WaitUntil([&] { return MillisecondsSince(begun) > 10000; });
  PrintGoal("window: share of a core while idle for ten seconds, %", 2,
            100 * (ProcessorMilliseconds(program) - used) / MillisecondsSince(begun));
}

struct Rows {
  double opened;           // milliseconds from opening the project to its rows
  double bytes_over_text;  // a row
};

Rows MeasureRows(int rows) {
  Program program;
  std::string report = HeaderLine() + "\r\n\r\n";
  double text = 0;
  for (int i = 0; i < rows; ++i) {
    const std::string number = std::to_string(i);
    const std::string address = "person" + number + "@mail.test", title = "The title of page " + number;
    const std::string page = "http://www.cars.example/page" + number + ".html";
    report.append(number).append("     ").append(address).append("     ").append(page).append("     ");
    report.append(title).append("\r\n");
    text += static_cast<double>(address.size() + page.size() + title.size());
  }
  program.WriteFile("report/cars_example.rpt", report);
  program.Start();
  const double before = Megabytes(program);
  const LONGLONG begun = Now();
  program.Main().Control(IDC_CMBURL).Type("www.cars.example");
  const Window list = program.Main().Control(IDC_LSTMAIL);
  if (!WaitUntil([&] { return list.Rows() == rows; })) throw std::runtime_error("the rows do not come");
  const double opened = MillisecondsSince(begun);
  return {opened, ((Megabytes(program) - before) * (1 << 20) - text) / rows};
}

void MeasureTables() {
  std::printf("\n| rows | opened in, ms | bytes a row beyond its text |\n|---|---|---|\n");
  double worst = 0;
  for (const int rows : {1000, 10000, 100000}) {
    const Rows measured = MeasureRows(rows);
    std::printf("| %d | %.0f | %.0f |\n", rows, measured.opened, measured.bytes_over_text);
    worst = measured.bytes_over_text;
  }
  PrintGoal("window: bytes a row beyond its text at 100,000 rows", 150, worst);
}

}  // namespace
}  // namespace quenlar::window_test

int main() {
  using namespace quenlar::window_test;
  try {
    std::printf("\n## The window, under Wine\n\n");
    MeasureStart();
    MeasureIdle();
    MeasureTables();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "window_bench: %s\n", error.what());
    return 1;
  }
}
