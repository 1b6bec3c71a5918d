// Measures the program with its window: start, idle time, memory, large tables. Run by bench/window.sh.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "project/data_file.h"
#include "window/bench/collection_bench.h"
#include "window/bench/stopwatch.h"
#include "window/program.h"
#include "window/usage.h"

namespace quenlar::window_test {
namespace {

// As bench.sh reads it.
void PrintGoal(const char* name, double most, double measured) {
  std::printf("Goal: %s (at most %.2f). Measured: %.2f, %s.\n", name, most, measured,
              measured <= most ? "met" : "**not met**");
}

void MeasureStart() {
  std::vector<double> shown, worked;
  Memory most;
  for (int i = 0; i < 9; ++i) {
    Program program;
    const Stopwatch watch;
    program.Start();
    shown.push_back(watch.Milliseconds());
    worked.push_back(ProcessorClock(program.process()).Read().program);
    const Memory memory = MemoryOf(program.process());
    if (memory.alone > most.alone) most = memory;
  }
  std::sort(shown.begin(), shown.end());
  std::sort(worked.begin(), worked.end());
  std::printf("From the start to the visible window, of nine: median %.0f ms, worst %.0f ms.\n\n", shown[4], shown[8]);
  std::printf("| memory with an empty list, the most of nine | MB |\n|---|---|\n");
  std::printf("| the program's alone, shared with no other process | %.1f |\n", most.alone);
  std::printf("| with its part of what processes share | %.1f |\n", most.proportional);
  std::printf("| all that is in memory, with everything that is shared | %.1f |\n\n", most.resident);
  PrintGoal("window: seconds of processor time until it is there, median of nine", 0.5, worked[4]);
  PrintGoal("window: megabytes of its own with an empty list", 30, most.alone);
}

// The program in use, with what Wine's services do for it: per cent of a core.
double MeasureIdle(const char* table) {
  Program program;
  program.Start();
  const ProcessorClock clock(program.process());
  const ProcessorTime before = clock.Read();
  const Stopwatch watch;
  (void)WaitUntil([&] { return watch.Milliseconds() > 10000; });
  const ProcessorTime after = clock.Read();
  const double percent = 100 * 1000 / watch.Milliseconds();
  const double own = (after.program - before.program) * percent;
  const double services = (after.services - before.services) * percent;
  std::printf("| %s | %.1f | %.1f |\n", table, own, services);
  return own + services;
}

void MeasureIdleBothWays() {
  std::printf("| idle for ten seconds with this interface table | the program, %% of a core | Wine's services, %% |\n");
  std::printf("|---|---|---|\n");
  const double real = MeasureIdle("the system's");
  const std::filesystem::path program = _wgetenv(L"QUENLAR_PROGRAM");
  _wputenv_s(L"QUENLAR_PROGRAM", (program.parent_path() / "Quenlar_idle.exe").c_str());
  const double made_up = MeasureIdle("one that is made up, at no cost");
  _wputenv_s(L"QUENLAR_PROGRAM", program.c_str());
  std::printf("\n");
  PrintGoal("window: share of a core while idle, Wine's services included, the system's interface table, %", 2, real);
  PrintGoal("window: share of a core while idle, Wine's services included, a made-up interface table, %", 2, made_up);
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
  const double before = MemoryOf(program.process()).alone;
  const Stopwatch watch;
  program.Main().Control("cmbURL").Type("www.cars.example");
  const Window list = program.Main().Control("lstMail");
  if (!WaitUntil([&] { return list.Rows() == rows; })) throw std::runtime_error("the rows do not come");
  const double opened = watch.Milliseconds();
  return {opened, ((MemoryOf(program.process()).alone - before) * (1 << 20) - text) / rows};
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
    MeasureIdleBothWays();
    MeasureTables();
    MeasureCollection();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "window_bench: %s\n", error.what());
    return 1;
  }
}
