// Data files: any bytes load in bounded time, and what was loaded is written and read back the same.
#include "fuzz/target.h"
#include "project/data_file.h"
#include "support/fake_event_loop.h"
#include "support/fake_system.h"
#include "support/in_memory_files.h"

using namespace quenlar;

namespace {

// Whether a link, written on a line of its own, is read back as itself: no line end within, no marker in front.
bool SurvivesAsALine(std::string_view url) {
  return url.find_first_of("\r\n") == url.npos && !url.empty() && url.front() != '[';
}

}  // namespace

QUENLAR_FUZZ_TARGET(data_file) {
  InMemoryFiles files;
  FakeCodePage code_page;
  FakeEventLoop loop;
  files.AddFolder("/p");
  files.Put("/p/a.dat", HeaderLine() + "\r\n" + std::string(bytes));
  LinkQueues queues;
  const DataFileContents contents = ReadDataFile(files, code_page, "/p/a.dat", queues, [] { return true; });
  FUZZ_CHECK(contents == DataFileContents::kLoaded);
  bool plain = true;
  for (const LinkQueue& queue : queues) {
    for (std::uint32_t i = 0; i < queue.Count(); ++i) plain = plain && SurvivesAsALine(queue.At(i).URL);
  }
  FUZZ_CHECK(WriteDataFile(files, code_page, loop, "/p/b.dat", queues).ok());
  LinkQueues again;
  FUZZ_CHECK(ReadDataFile(files, code_page, "/p/b.dat", again, [] { return true; }) == DataFileContents::kLoaded);
  for (int level = 0; plain && level < kLevels; ++level) {
    FUZZ_CHECK(again[level].Count() == queues[level].Count());
    for (std::uint32_t i = 0; i < again[level].Count(); ++i)
      FUZZ_CHECK(again[level].At(i).URL == queues[level].At(i).URL);
  }
  files.Put("/p/c.dat", std::string(bytes));
  LinkQueues other;
  (void)ReadDataFile(files, code_page, "/p/c.dat", other, [] { return true; });
}
