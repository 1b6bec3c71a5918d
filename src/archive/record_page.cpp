#include "archive/record_page.h"

#include <unordered_set>
#include <utility>

#include "archive/http_message.h"
#include "archive/warc_date.h"
#include "base/ascii.h"
#include "page/charset.h"
#include "page/page_reader.h"
#include "page/url.h"

namespace quenlar {
namespace {

constexpr std::size_t kLongestTarget = 2083;

bool IsPageType(std::string_view type) {
  return type.empty() || EqualsIgnoreCase(type, "text/html") || EqualsIgnoreCase(type, "application/xhtml+xml") ||
         EqualsIgnoreCase(type, "text/plain");
}

// Whether an address comes for the first time on a page. Pages with few addresses need no table.
class FirstOnPage {
 public:
  explicit FirstOnPage(std::size_t addresses) : few_(addresses <= kFew) {}
  [[nodiscard]] bool Add(std::string_view address) {
    if (!few_) return many_.insert(Lower(address)).second;
    for (const std::string_view before : before_) {
      if (EqualsIgnoreCase(before, address)) return false;
    }
    before_.push_back(address);
    return true;
  }

 private:
  static constexpr std::size_t kFew = 16;
  const bool few_;
  std::vector<std::string_view> before_;
  std::unordered_set<std::string> many_;
};

void TakeAddresses(const ReadResult& read, HarvestedPage& page) {
  const auto keep = [&page](std::string_view text) {
    const auto begin = static_cast<std::uint32_t>(page.texts.size());
    page.texts += text;
    return begin;
  };
  page.addresses.reserve(read.addresses.size());
  FirstOnPage firsts(read.addresses.size());
  for (const PageAddress& found : read.addresses) {
    HarvestedPage::Address address{};
    address.place = found.place;
    address.first = firsts.Add(found.address);
    address.begin = keep(found.address);
    address.size = static_cast<std::uint32_t>(found.address.size());
    const bool same = found.written == found.address;
    address.written_begin = same ? address.begin : keep(found.written);
    address.written_size = static_cast<std::uint32_t>(found.written.size());
    page.addresses.push_back(address);
  }
}

std::optional<HarvestedPage> Read(const ReadRequest& request, const PageReading& reading, PageCounts& counts) {
  ++counts.pages;
  const ReadResult read = ReadPage(request, reading.idna, reading.decoder);
  if (reading.obey_robots && read.robots.noindex()) return std::nullopt;
  if (read.addresses.empty()) return std::nullopt;
  HarvestedPage page;
  page.title = read.title.value_or("");
  page.type = Lower(ParseContentType(request.content_type).type);
  TakeAddresses(read, page);
  return page;
}

}  // namespace

std::optional<HarvestedPage> ReadRecordPage(const WarcRecord& record, const PageReading& reading, PageCounts& counts) {
  const bool answer = EqualsIgnoreCase(record.head.type, "response");
  HttpMessage message;
  if (answer) {
    if (!ParseHttpMessage(record.block, message) || message.status < 200 || message.status > 299) return std::nullopt;
  } else {
    message.body = record.block;
    message.content_type = record.head.content_type;
  }
  if (!IsPageType(ParseContentType(message.content_type).type)) return std::nullopt;
  const std::optional<Url> url = ParseUrl(record.head.target, nullptr, reading.idna);
  if (!url || url->href().size() > kLongestTarget || url->path() == "/robots.txt") return std::nullopt;

  std::string storage;
  ReadRequest request;
  if (!DecodeBody(message, kMostPage, storage, request.body)) return std::nullopt;
  request.url = &*url;
  request.content_type = message.content_type;
  request.robots_headers = message.robots_headers;
  request.links = false;
  request.count_protected = false;
  request.decode_protected = reading.decode_protected;
  std::optional<HarvestedPage> page = Read(request, reading, counts);
  if (!page) return page;
  page->url = url->href();
  page->of_record = true;
  page->status = message.status;
  page->seen = ParseWarcDate(record.head.date);
  return page;
}

std::optional<HarvestedPage> ReadFilePage(std::string_view body, std::string_view content_type, const std::string& name,
                                          const PageReading& reading, PageCounts& counts) {
  ReadRequest request;
  request.body = body.substr(0, kMostPage);
  request.content_type = content_type;
  request.links = false;
  request.count_protected = false;
  request.decode_protected = reading.decode_protected;
  std::optional<HarvestedPage> page = Read(request, reading, counts);
  if (page) page->url = name;
  return page;
}

}  // namespace quenlar
