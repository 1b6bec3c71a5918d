// Ties the one target of this program to libFuzzer.
#include "fuzz/target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quenlar::fuzz::Targets().front().run({reinterpret_cast<const char*>(data), size});
  return 0;
}
