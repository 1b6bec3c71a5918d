#include "support/reference_page.h"

#include <algorithm>

#include "base/ascii.h"

namespace quenlar {
namespace {

using List = std::vector<std::string>;

void AppendOnce(List& list, const std::string& address) {
  for (const std::string& entry : list) {
    if (Lower(entry) == Lower(address)) return;
  }
  list.push_back(address);
}

bool NamesUnwantedFile(const std::string& target) {
  const std::string last = Lower(target.size() < 4 ? target : target.substr(target.size() - 4));
  const List kEndings = {".gif", ".jpg", "jpeg", ".bmp", ".png", ".pcx", ".tif", "tiff", ".wmf", ".exe",
                         ".zip", ".pdf", ".doc", ".avi", ".mpg", "mpeg", ".wmv", "rmvb", ".mp3", ".wav"};
  return std::find(kEndings.begin(), kEndings.end(), last) != kEndings.end();
}

std::string TagName(const std::string& tag) {
  const std::string with_blanks = ReplaceAll(Lower(tag), "&nbsp;", " ");
  return with_blanks.substr(0, with_blanks.find(' '));
}

}  // namespace

ReferenceAnalysis::ReferenceAnalysis(const MakeReferencePattern& make)
    : tag_(make(kReferenceTagPattern)),
      text_(make(kReferenceTextPattern)),
      address_(make(kReferenceAddressPattern)),
      title_(make(kReferenceTitlePattern)),
      result_(make(kReferenceResultPattern)) {}

bool ReferenceAnalysis::ParsePage(const std::string& page, const std::string& request_name) {
  const int level = static_cast<int>(std::string("MXYZVWPQRST").find(request_name.at(0)));
  const std::string digit = request_name.substr(1, 1), page_address = request_name.substr(2);
  Harvest(page, page_address);
  const int number = digit[0] >= '0' && digit[0] <= '9' ? digit[0] - '0' : 0;
  if (level > 0 && number >= 1) return true;
  return TagWalk(page, level, page_address, digit);
}

void ReferenceAnalysis::CollectResultLinks(const std::string& page) {
  for (const std::string_view match : result_->FindAll(page)) {
    const std::string text(match);
    const std::size_t at = Lower(text).find("href=\"") + 6;
    queues.AddResult(text.substr(at, text.size() - at - 1));
  }
}

std::string ReferenceAnalysis::Title(const std::string& page) const {
  const auto match = title_->Find(page, 0);
  if (!match) return "";
  const std::string text(*match);
  const std::size_t begin = text.find('>') + 1;
  return ReferenceClean(text.substr(begin, text.find('<', begin) - begin));
}

std::string ReferenceAnalysis::FirstAddress(std::string_view text) const {
  return std::string(address_->Find(text, 0).value_or(""));
}

void ReferenceAnalysis::Harvest(const std::string& page, const std::string& page_address) {
  const std::string title = Title(page);
  List tags, texts;
  for (const std::string_view match : tag_->FindAll(page)) {
    const std::string address = FirstAddress(match);
    if (address.empty()) continue;
    const std::string lower = Lower(match);
    const bool link = lower.find("mailto:") != lower.npos && lower.find("<a") != lower.npos;
    AppendOnce(link ? texts : tags, address);
  }
  for (const std::string_view match : text_->FindAll(page)) {
    const std::string address = FirstAddress(match);
    if (!address.empty()) AppendOnce(texts, address);
  }
  std::erase_if(tags, [&](const std::string& tag) {
    return std::any_of(texts.begin(), texts.end(), [&](const std::string& text) { return Lower(text) == Lower(tag); });
  });
  for (const std::string& address : texts) {
    if (Insert(address, page_address, title, false)) return;
  }
  for (const std::string& address : tags) {
    if (Insert(address, page_address, title, tags.size() == 1)) return;
  }
}

// True when the stop number is reached.
bool ReferenceAnalysis::Insert(const std::string& address, const std::string& page_address, const std::string& title,
                               bool tag_only) {
  for (const ReferenceRecord& record : found) {
    if (Lower(record.address) == Lower(address)) return false;
  }
  found.push_back({page_address, address, title, tag_only});
  const std::int64_t in_run = static_cast<std::int64_t>(found.size()) - baseline;
  if (in_run % save_every == 0) saves.push_back(found.size());
  if (in_run >= stop_number) stop_requested = true;
  return in_run >= stop_number;
}

bool ReferenceAnalysis::TagWalk(const std::string& page, int level, const std::string& page_address,
                                const std::string& digit) {
  const std::string lower = Lower(page);
  const int number = digit[0] >= '0' && digit[0] <= '9' ? digit[0] - '0' : 0;
  std::size_t gt = 0;
  for (;;) {
    const std::size_t lt = page.find('<', gt);
    if (lt == page.npos) return true;
    gt = page.find('>', lt);
    if (gt == page.npos) return true;
    if (stop_requested) return false;
    const std::string tag(TrimBlanks(page.substr(lt + 1, gt - lt - 1)));
    std::string target;
    if (TagName(tag) == "a") {
      target = ReferenceAttribute(tag, "href=");
      if (lower.find("</a", gt) == lower.npos) return true;
      if (NamesUnwantedFile(target)) continue;
    } else if (TagName(tag) == "frame") {
      target = ReferenceAttribute(tag, "src=");
    } else {
      continue;
    }
    const std::string resolved = ReferenceResolve(target, page_address);
    if (resolved.empty()) continue;
    if (level == 0) {
      queues.MakeLink(resolved, page_address, digit);
    } else {
      queues.MakeExpandLink(level, resolved, page_address, static_cast<std::int16_t>(number));
    }
  }
}

}  // namespace quenlar
