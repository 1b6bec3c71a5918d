#include "forms/e_tray.h"

#include <utility>

namespace quenlar {

void eTray::AddTrayIcon() {
  if (!std::exchange(added_, true)) icon_.AddTrayIcon();
}

void eTray::RemoveTrayIcon() {
  if (std::exchange(added_, false)) icon_.RemoveTrayIcon();
}

void eTray::OnRightButtonDown(std::function<void()> handler) { icon_.OnRightButtonDown(std::move(handler)); }

}  // namespace quenlar
