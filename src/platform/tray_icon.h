// The program's icon in the notification area.
#pragma once

#include <functional>

namespace quenlar {

class TrayIcon {
 public:
  virtual ~TrayIcon() = default;
  virtual void AddTrayIcon() = 0;
  virtual void RemoveTrayIcon() = 0;
  // `message` is the mouse message number that the icon's callback carries (516 is "right button down").
  // Called inside a pump.
  virtual void OnMessage(std::function<void(int message)> callback) = 0;
};

inline constexpr int kTrayRightButtonDown = 516;

}  // namespace quenlar
