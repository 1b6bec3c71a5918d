// Memory inside another process, for messages whose argument is a structure.
#pragma once

#include <cstddef>
#include <stdexcept>

#include "ui/win32/windows_api.h"

namespace quenlar::window_test {

class RemoteMemory {
 public:
  // Of the process that owns the window.
  RemoteMemory(HWND window, std::size_t size) {
    DWORD process_id = 0;
    GetWindowThreadProcessId(window, &process_id);
    process_ = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, process_id);
    place_ = static_cast<std::byte*>(VirtualAllocEx(process_, nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
    if (!place_) throw std::runtime_error("no memory in the other process");
  }
  ~RemoteMemory() {
    VirtualFreeEx(process_, place_, 0, MEM_RELEASE);
    CloseHandle(process_);
  }
  RemoteMemory(const RemoteMemory&) = delete;
  RemoteMemory& operator=(const RemoteMemory&) = delete;

  // Where it lies in the other process.
  [[nodiscard]] std::byte* place() const { return place_; }
  void Write(const void* from, std::size_t size) const { WriteProcessMemory(process_, place_, from, size, nullptr); }
  void Read(std::size_t offset, void* to, std::size_t size) const {
    ReadProcessMemory(process_, place_ + offset, to, size, nullptr);
  }

 private:
  HANDLE process_ = nullptr;
  std::byte* place_ = nullptr;
};

}  // namespace quenlar::window_test
