// Stands for the upgrader: writes its arguments, a line each, into Upgrade.txt beside itself.
#include <filesystem>
#include <fstream>

#include "platform/win32/windows_api.h"

int main(int count, char** arguments) {
  wchar_t path[MAX_PATH] = {};
  if (GetModuleFileNameW(nullptr, path, MAX_PATH) == MAX_PATH) return 1;
  const std::filesystem::path notes = std::filesystem::path(path).replace_extension(".txt");
  const std::filesystem::path unfinished = std::filesystem::path(path).replace_extension(".tmp");
  {
    std::ofstream file(unfinished, std::ios::binary);
    for (int i = 1; i < count; ++i) file << arguments[i] << "\n";
  }
  std::filesystem::rename(unfinished, notes);
}
