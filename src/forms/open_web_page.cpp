#include "forms/open_web_page.h"

#include "base/ascii.h"

namespace quenlar {
namespace {

// What could cut the address into several arguments or end it early.
std::string AsOneArgument(std::string_view address) {
  std::string result;
  for (const char c : address) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte <= ' ' || byte == 127 || c == '"') {
      result += PercentCode(c);
    } else {
      result += c;
    }
  }
  return result;
}

}  // namespace

void OpenWebPage(Shell& shell, std::string_view address) {
  if (ContainsIgnoreCase(address, "http://") || ContainsIgnoreCase(address, "https://")) {
    shell.OpenBrowser(AsOneArgument(address));
  } else {
    shell.OpenBrowser("file:///" + AsOneArgument(ReplaceAll(address, "\\", "/")));
  }
}

void OpenFileInBrowser(Shell& shell, std::string_view path) {
  std::string address;
  for (const char c : path) {
    if (c == '%' || c == '#' || c == '?') {
      address += PercentCode(c);
    } else {
      address += c;
    }
  }
  OpenWebPage(shell, address);
}

}  // namespace quenlar
