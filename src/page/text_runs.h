// Puts the pieces of text that a browser shows as one together, for the search for addresses.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "page/address_finder.h"

namespace quenlar {

// Takes the pieces of a page in order. A run that has no sign of an address is given up without having been put
// together, and one that is a single piece without references is handed on as it stands in the page.
class TextRuns {
 public:
  // Both must outlive this object.
  TextRuns(std::string_view page, AddressFinder& finder) : page_(page), finder_(finder) {}

  // page[begin, end) is text; `sign`: an address may stand in it.
  void Text(std::size_t begin, std::size_t end, bool has_references, bool sign) {
    if (begin == end) return;
    pieces_.push_back({begin, end, has_references, joint_, hidden_joint_});
    joint_ = hidden_joint_ = false;
    has_sign_ = has_sign_ || sign;
  }
  // A tag or a comment stands here that does not end a word; `hidden`: an element that is not shown.
  void Joint(bool hidden) {
    if (pieces_.empty()) return;
    joint_ = true;
    hidden_joint_ = hidden_joint_ || hidden;
  }
  // The words of the run end here. `reversed`: it is shown from its last character to the first.
  void End(bool reversed) {
    if (has_sign_) HandOn(reversed);
    pieces_.clear();
    joint_ = hidden_joint_ = has_sign_ = false;
  }
  // Whether the run at hand has a sign.
  [[nodiscard]] bool has_sign() const { return has_sign_; }

 private:
  struct Piece {
    std::size_t begin, end;
    bool has_references;
    bool joint, hidden_joint;  // in front of it
  };

  void HandOn(bool reversed);

  std::string_view page_;
  AddressFinder& finder_;
  std::vector<Piece> pieces_;
  bool joint_ = false, hidden_joint_ = false, has_sign_ = false;
  // Of the run that is handed on.
  std::string text_;
  std::vector<quenlar::Joint> joints_;
};

}  // namespace quenlar
