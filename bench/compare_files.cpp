// The report and the data file of 32,000 records, written and read back, against a plain copy of the same bytes.
// usage: compare_files FOLDER ROUNDS
#include <cstdio>
#include <cstdlib>

#include "bench/quenlar_pages.h"
#include "bench/table.h"
#include "platform/posix/files.h"
#include "project/data_file.h"
#include "project/report_file.h"

namespace quenlar::bench {
namespace {

class Latin final : public CodePage {
 public:
  std::string ToUtf8(std::string bytes) const override { return bytes; }
  std::string FromUtf8(std::string text) const override { return text; }
};

void Fill(Project& project, std::size_t title_length) {
  for (int i = 0; i < 32'000; ++i) {
    const std::string n = std::to_string(i);
    const std::string title = "Page " + n + " " + std::string(title_length, 't');
    project.found.Add({"http://www.site" + std::to_string(i % 700) + ".example/folder/page" + n + ".html",
                       "person" + n + "@mail.example.org", title, false});
    project.queues[static_cast<std::size_t>(i % kLevels)].AddIfNew("http://www.site.example/folder/link" + n + ".html");
  }
}

void Run(const std::string& folder, int rounds, std::size_t title_length) {
  PosixFiles files;
  Latin code_page;
  IdleLoop loop;
  Project project;
  Fill(project, title_length);
  const std::string report = folder + "/bench.rpt", data = folder + "/bench.dat", copy = folder + "/copy.rpt";
  if (!WriteReport(files, code_page, loop, report, project.found, true).ok()) std::abort();
  const std::string bytes = ReadWhole(files, report).take();

  const auto timings =
      Compare({{"plain copy of the report's bytes",
                [&] {
                  if (!WriteWhole(files, copy, ReadWhole(files, report).take()).ok()) std::abort();
                }},
               {"report written",
                [&] {
                  if (!WriteReport(files, code_page, loop, report, project.found, true).ok()) std::abort();
                }},
               {"report read back",
                [&] {
                  FoundAddresses found;
                  ReadReport(ReadWhole(files, report).take(), found, [] { return true; });
                  if (found.Count() != project.found.Count()) std::printf("read back %u records\n", found.Count());
                }},
               {"data file written",
                [&] {
                  if (!WriteDataFile(files, code_page, loop, data, project.queues).ok()) std::abort();
                }},
               {"data file read back",
                [&] {
                  LinkQueues queues;
                  if (ReadDataFile(files, code_page, data, queues, [] { return true; }) != DataFileContents::kLoaded)
                    std::abort();
                }}},
              rounds);
  std::printf(
      "\n### 32,000 records, titles of %zu characters, report of %.1f MB\n\n"
      "| work | milliseconds | times the plain copy |\n|---|---|---|\n",
      title_length, static_cast<double>(bytes.size()) / 1e6);
  for (const Timing& t : timings) {
    std::printf("| %s | %.1f | %.2f (%.2f to %.2f) |\n", t.name.c_str(), t.median * 1e3, t.ratio, t.ratio_lowest,
                t.ratio_highest);
  }
  PrintGoal("files: report written, times the plain copy", 3, timings[1].ratio, false);
  PrintGoal("files: report read back, times the plain copy", 3, timings[2].ratio, false);
  PrintGoal("files: seconds to read data file and report of the largest project", 0.2,
            timings[2].median + timings[4].median, false);
}

}  // namespace
}  // namespace quenlar::bench

int main(int argc, char** argv) {
  if (argc != 3) return std::fprintf(stderr, "usage: compare_files FOLDER ROUNDS\n"), 2;
  quenlar::bench::Heading("Data file and report");
  quenlar::bench::Run(argv[1], std::atoi(argv[2]), 20);
  quenlar::bench::Run(argv[1], std::atoi(argv[2]), 300);
}
