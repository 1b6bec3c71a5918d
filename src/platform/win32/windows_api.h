// The system's headers in the order that they need, without macros that take our names.
#pragma once

// clang-format off
#include <winsock2.h>
#include <ws2tcpip.h>
#include <windows.h>
#include <commdlg.h>
#include <iphlpapi.h>
#include <objbase.h>
#include <sensapi.h>
#include <shellapi.h>
#include <winhttp.h>
// clang-format on

#undef Yield  // a macro without a use, and a member of EventLoop
