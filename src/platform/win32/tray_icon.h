// The icon in the notification area of Windows.
#pragma once

#include <memory>

#include "platform/tray_icon.h"

namespace quenlar {

// Owns a hidden window, which the icon reports to. Comes back by itself when the task bar is started anew, and comes
// later, inside a pump, where the task bar is too busy at first or is not there.
class Win32TrayIcon final : public TrayIcon {
 public:
  // `icon` is an HICON, which stays the caller's; null takes the system's icon for programs.
  explicit Win32TrayIcon(void* icon);
  ~Win32TrayIcon() override;

  void AddTrayIcon() override;
  void RemoveTrayIcon() override;
  void OnRightButtonDown(std::function<void()> handler) override;

  // The hidden window, an HWND: the owner of the icon's menu.
  [[nodiscard]] void* window() const;

  struct Implementation;

 private:
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace quenlar
