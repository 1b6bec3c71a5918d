// The program's icon in the notification area.
#pragma once

#include <functional>

namespace quenlar {

class TrayIcon {
 public:
  virtual ~TrayIcon() = default;
  // Shows the icon, and shows it again when the task bar has been restarted. Where the task bar does not take it yet,
  // it is tried again every two seconds, inside pumps.
  virtual void AddTrayIcon() = 0;
  // Does nothing where there is no icon.
  virtual void RemoveTrayIcon() = 0;
  // The right mouse button went down on the icon. Called inside a pump. A later handler takes the place of this one.
  virtual void OnRightButtonDown(std::function<void()> handler) = 0;
};

}  // namespace quenlar
