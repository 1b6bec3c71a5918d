// The icon in the notification area.
#pragma once

#include <functional>

#include "platform/tray_icon.h"

namespace quenlar {

// Remembers whether the icon is there, so that it is added once and removed once.
class eTray {
 public:
  explicit eTray(TrayIcon& icon) : icon_(icon) {}

  // Adds the icon, or removes it. A second call of the same kind does nothing.
  void AddTrayIcon();
  void RemoveTrayIcon();

  // The right mouse button went down on the icon; every other message of it is passed over. Called inside a pump.
  void OnRightButtonDown(std::function<void()> handler);

 private:
  TrayIcon& icon_;
  bool added_ = false;
};

}  // namespace quenlar
