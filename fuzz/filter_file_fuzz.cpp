// Filter files: any bytes are read, patterns of any words neither crash nor run away, and words are written back.
#include "fuzz/target.h"
#include "settings/filter_file.h"
#include "support/fake_system.h"
#include "support/in_memory_files.h"

using namespace quenlar;

QUENLAR_FUZZ_TARGET(filter_file) {
  InMemoryFiles files;
  FakeCodePage code_page;
  files.AddFolder("/p");
  files.Put("/p/f.dat", std::string(bytes));
  Settings settings;
  settings.RemoveFilterOn = settings.ExtractFilterOn = 1;
  FilterWords words(settings);
  (void)ReadFilterFile(files, code_page, "/p/f.dat", words);
  for (const char* address : {"a@b.example.org", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa@b.de"}) {
    (void)words.Keeps(address);
  }
  FUZZ_CHECK(WriteFilterFile(files, code_page, "/p/g.dat", words).ok());
  FilterWords again(settings);
  (void)ReadFilterFile(files, code_page, "/p/g.dat", again);
  FUZZ_CHECK(again.RemoveFilterWords.size() >= words.RemoveFilterWords.size() || !words.ExtractFilterWords.empty());
}
