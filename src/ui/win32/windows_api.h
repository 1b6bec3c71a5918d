// The system's headers for windows and common controls, in the order that they need.
#pragma once

// clang-format off
#include "platform/win32/windows_api.h"
#include <objbase.h>
#include <windowsx.h>
#include <commctrl.h>
#include <uxtheme.h>
// clang-format on
