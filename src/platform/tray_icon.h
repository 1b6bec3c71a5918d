// The program's icon in the notification area.
#pragma once

#include <functional>

namespace quenlar {

class TrayIcon {
 public:
  virtual ~TrayIcon() = default;
  virtual void AddTrayIcon() = 0;
  virtual void RemoveTrayIcon() = 0;
  // The right mouse button went down on the icon. Called inside a pump. A later handler takes the place of this one.
  virtual void OnRightButtonDown(std::function<void()> handler) = 0;
};

}  // namespace quenlar
