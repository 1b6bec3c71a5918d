#include "platform/win32/clipboard.h"

#include <cstring>

#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar::win32 {
namespace {

// Programs that watch the clipboard hold it for moments, so a refusal is tried again.
bool OpenInTheEnd(HWND owner) {
  constexpr int kTries = 20;
  constexpr DWORD kBetweenTriesMs = 10;
  for (int i = 0; i < kTries; ++i) {
    if (OpenClipboard(owner)) return true;
    Sleep(kBetweenTriesMs);  // check: sleeping the clipboard tells nobody when it becomes free
  }
  return false;
}

// The clipboard, opened for a window of our own: without an owner the system refuses new contents.
class Clipboard {
 public:
  Clipboard()
      : owner_(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)),
        open_(owner_ && OpenInTheEnd(owner_)) {}
  ~Clipboard() {
    if (open_) CloseClipboard();
    if (owner_) DestroyWindow(owner_);
  }
  Clipboard(const Clipboard&) = delete;
  Clipboard& operator=(const Clipboard&) = delete;

  void Put(const std::wstring& text) {
    if (!open_) return;
    const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes);
    if (!memory) return;
    std::memcpy(GlobalLock(memory), text.c_str(), bytes);
    GlobalUnlock(memory);
    // The system owns the memory once it has taken it.
    if (!EmptyClipboard() || !SetClipboardData(CF_UNICODETEXT, memory)) GlobalFree(memory);
  }

 private:
  HWND owner_;
  bool open_;
};

}  // namespace

void PutOnClipboard(const std::string& text) { Clipboard().Put(ToWide(text)); }

}  // namespace quenlar::win32
