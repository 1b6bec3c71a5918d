#include "platform/end_on_crash.h"

#include <csignal>
#include <cstdlib>

#include <windows.h>

namespace quenlar {
namespace {

LONG WINAPI EndNow(EXCEPTION_POINTERS*) {
  TerminateProcess(GetCurrentProcess(), kCrashStatus);
  return EXCEPTION_EXECUTE_HANDLER;
}

void EndOnAbort(int) { TerminateProcess(GetCurrentProcess(), kCrashStatus); }

}  // namespace

void EndOnCrash() {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
  SetUnhandledExceptionFilter(EndNow);
  std::signal(SIGABRT, EndOnAbort);
}

}  // namespace quenlar
