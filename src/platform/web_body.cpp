#include "platform/web_body.h"

#include <algorithm>
#include <utility>

namespace quenlar {
namespace {

constexpr std::size_t kPiece = 4096;            // decodes to four megabytes at most
constexpr std::size_t kBeyond = 8u << 20;       // compressed bytes that may decode to next to nothing
constexpr std::size_t kMaxSpareRoom = 1 << 20;  // more of it behind a body is given back

}  // namespace

void WebBody::Begin(std::optional<ContentCoding> coding, std::size_t limit) {
  limit_ = limit;
  known_ = coding.has_value();
  full_ = false;
  text_.clear();
  decoder_.reset();
  if (known_ && *coding != ContentCoding::kIdentity) decoder_.emplace(*coding, limit + kBeyond);
}

WebBody::Outcome WebBody::Add(std::string_view bytes) {
  if (full_) return Outcome::kFull;
  if (!known_ && !bytes.empty()) return Outcome::kBroken;
  if (!decoder_) {
    const std::size_t room = limit_ - text_.size();
    text_.append(bytes.substr(0, room));
    full_ = bytes.size() > room;
  }
  for (; decoder_ && !bytes.empty(); bytes.remove_prefix(std::min(kPiece, bytes.size()))) {
    if (!decoder_->Add(bytes.substr(0, kPiece), text_)) return Outcome::kBroken;
    full_ = text_.size() > limit_;
    if (full_) break;
  }
  if (text_.size() > limit_) text_.resize(limit_);
  return full_ ? Outcome::kFull : Outcome::kGoesOn;
}

std::string WebBody::Take() {
  if (text_.capacity() - text_.size() > kMaxSpareRoom) text_.shrink_to_fit();
  decoder_.reset();
  return std::exchange(text_, {});
}

}  // namespace quenlar
