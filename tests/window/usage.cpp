#include "window/usage.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

// After windows.h, whose types it uses.
#include <psapi.h>

namespace quenlar::window_test {
namespace {

namespace fs = std::filesystem;

constexpr double kTicksASecond = 100;

std::string ReadAll(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

struct HostProcess {
  fs::path folder;
  std::string name;  // at most 15 bytes
};

bool IsProgram(const HostProcess& process) { return process.name == "Quenlar.exe"; }

// The line of an environment that says to which Wine a process belongs; empty outside of any.
std::string PrefixIn(const std::string& environment) {
  std::istringstream lines(environment);
  for (std::string line; std::getline(lines, line, '\0');) {
    if (line.starts_with("WINEPREFIX=")) return line;
  }
  return "";
}

// The processes of this Wine, with the program among them. None on Windows.
std::vector<HostProcess> HostProcesses() {
  std::vector<HostProcess> processes;
  const fs::path all = "Z:\\proc";
  const std::string here = PrefixIn(ReadAll(all / "self" / "environ"));
  if (here.empty()) return processes;
  for (const fs::directory_entry& entry : fs::directory_iterator(all)) {
    if (entry.path().filename().string().find_first_not_of("0123456789") != std::string::npos) continue;
    if (PrefixIn(ReadAll(entry.path() / "environ")) != here) continue;
    std::string name = ReadAll(entry.path() / "comm");
    name.resize(std::min(name.size(), name.find('\n')));
    processes.push_back({entry.path(), name});
  }
  if (std::none_of(processes.begin(), processes.end(), IsProgram)) throw std::runtime_error("no program to measure");
  return processes;
}

bool IsService(const HostProcess& process) {
  return process.name.starts_with("wineserver") || process.name == "winedevice.exe" || process.name == "services.exe" ||
         process.name == "explorer.exe";
}

// User and system time are the 14th and 15th field; the 2nd one may hold blanks.
double Seconds(const fs::path& process) {
  const std::string stat = ReadAll(process / "stat");
  std::istringstream fields(stat.substr(std::min(stat.size(), stat.rfind(')') + 1)));
  std::string passed_over;
  for (int i = 3; i < 14; ++i) fields >> passed_over;
  double user = 0, system = 0;
  fields >> user >> system;
  return (user + system) / kTicksASecond;
}

Memory HostMemory(const HostProcess& process) {
  Memory memory;
  std::istringstream lines(ReadAll(process.folder / "smaps_rollup"));
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string name;
    double kilobytes = 0;
    words >> name >> kilobytes;
    if (name == "Rss:") memory.resident += kilobytes / 1024;
    if (name == "Pss:") memory.proportional += kilobytes / 1024;
    if (name == "Private_Clean:" || name == "Private_Dirty:") memory.alone += kilobytes / 1024;
  }
  return memory;
}

}  // namespace

Memory MemoryOf(HANDLE program) {
  for (const HostProcess& process : HostProcesses()) {
    if (IsProgram(process)) return HostMemory(process);
  }
  PROCESS_MEMORY_COUNTERS_EX counters{};
  GetProcessMemoryInfo(program, reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
  Memory memory;
  memory.alone = static_cast<double>(counters.PrivateUsage) / (1 << 20);
  return memory;
}

ProcessorClock::ProcessorClock(HANDLE program) : program_(program) {
  for (const HostProcess& process : HostProcesses()) {
    if (IsProgram(process)) own_.push_back(process.folder);
    if (IsService(process)) services_.push_back(process.folder);
  }
}

ProcessorTime ProcessorClock::Read() const {
  ProcessorTime time;
  for (const fs::path& process : own_) time.program += Seconds(process);
  for (const fs::path& process : services_) time.services += Seconds(process);
  if (!own_.empty()) return time;
  FILETIME created, ended, kernel, user;
  GetProcessTimes(program_, &created, &ended, &kernel, &user);
  const auto ticks = [](FILETIME value) {
    return static_cast<double>((static_cast<ULONGLONG>(value.dwHighDateTime) << 32) | value.dwLowDateTime);
  };
  time.program = (ticks(kernel) + ticks(user)) / 1e7;
  return time;
}

}  // namespace quenlar::window_test
