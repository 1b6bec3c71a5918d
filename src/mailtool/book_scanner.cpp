#include "mailtool/book_scanner.h"

#include <algorithm>

#include "base/ascii.h"

namespace quenlar {
namespace {

bool EndsAddress(char c) {
  if (IsWord(c) || static_cast<unsigned char>(c) >= 0x80) return false;
  return c != '.' && c != '%' && c != '+' && c != '-' && c != '@';
}

}  // namespace

void BookScanner::Feed(std::string_view block) {
  const auto last = std::find_if(block.rbegin(), block.rend(), EndsAddress);
  if (last == block.rend()) {
    Keep(block);
    return;
  }
  const auto cut = static_cast<std::size_t>(block.rend() - last);
  std::size_t begin = 0;
  if (!kept_.empty() || passing_over_) {
    begin = static_cast<std::size_t>(std::find_if(block.begin(), block.end(), EndsAddress) - block.begin()) + 1;
    Keep(block.substr(0, begin));
    Finish();
  }
  if (begin < cut) piece_(block.substr(begin, cut - begin));
  Keep(block.substr(cut));
}

void BookScanner::Finish() {
  if (!kept_.empty()) piece_(kept_);
  kept_.clear();
  passing_over_ = false;
}

void BookScanner::Keep(std::string_view bytes) {
  if (passing_over_) return;
  if (kept_.size() + bytes.size() <= kLongestRun) {
    kept_ += bytes;
    return;
  }
  kept_ = std::string();
  passing_over_ = true;
}

}  // namespace quenlar
