// The body of one answer, decoded as far as the request wants it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/content_decoder.h"

namespace quenlar {

class WebBody {
 public:
  // At most `limit` decoded bytes are kept. Without a coding every byte is broken.
  void Begin(std::optional<ContentCoding> coding, std::size_t limit);

  enum class Outcome {
    kGoesOn,
    kFull,    // there is more than the limit; nothing more is taken
    kBroken,  // not of the coding
  };
  // May throw std::bad_alloc; then nothing more can be added.
  [[nodiscard]] Outcome Add(std::string_view bytes);

  // True when the body is whole: what has come is not the beginning of something compressed.
  [[nodiscard]] bool AtEnd() const { return !decoder_ || decoder_->AtEnd(); }
  [[nodiscard]] bool truncated() const { return full_; }
  [[nodiscard]] std::string Take();

 private:
  std::optional<ContentDecoder> decoder_;
  std::size_t limit_ = 0;
  bool known_ = false, full_ = false;
  std::string text_;
};

}  // namespace quenlar
