#include "platform/win32/message_boxes.h"

#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar {
namespace {

UINT Flag(BoxIcon icon) {
  switch (icon) {
    case BoxIcon::kInformation:
      return MB_ICONINFORMATION;
    case BoxIcon::kExclamation:
      return MB_ICONEXCLAMATION;
    case BoxIcon::kStop:
      return MB_ICONSTOP;
  }
  return 0;
}

}  // namespace

BoxAnswer Win32MessageBoxes::Show(const std::string& text, const std::string& title, BoxIcon icon, BoxButtons buttons) {
  const HWND owner = GetActiveWindow();
  UINT flags = Flag(icon) | MB_TASKMODAL | (buttons == BoxButtons::kYesNo ? MB_YESNO : MB_OK);
  if (!owner) flags |= MB_SETFOREGROUND;
  const int answer = MessageBoxW(owner, win32::ToWide(text).c_str(), win32::ToWide(title).c_str(), flags);
  if (buttons == BoxButtons::kOk) return BoxAnswer::kOk;
  return answer == IDYES ? BoxAnswer::kYes : BoxAnswer::kNo;
}

}  // namespace quenlar
