// The head of an answer and its compressed body: any bytes are accepted or refused, within the limits, and however they
// arrive.
#include <string>

#include "fuzz/target.h"
#include "platform/answer_head.h"
#include "platform/content_decoder.h"
#include "platform/page_fetcher.h"
#include "platform/web_body.h"
#include "platform/web_head_reader.h"

using namespace quenlar;

namespace {

// Feeds lines until the head is complete, has failed or has come to its end; false when it has failed. `body` begins
// behind the head.
bool ReadHead(std::string_view bytes, bool with_line_ends, AnswerHead& head, std::string_view& body) {
  body = bytes;
  while (!body.empty() && !head.complete()) {
    const std::size_t length = std::min(body.find('\n'), body.size() - 1) + 1;
    std::string_view line = body.substr(0, length);
    while (!with_line_ends && !line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
    body.remove_prefix(length);
    if (!head.AddLine(line)) return false;
  }
  return true;
}

// The body decoded in pieces of one length; empty where it is refused.
std::optional<std::string> Decoded(ContentCoding coding, std::string_view body, std::size_t piece, bool& at_end) {
  constexpr std::size_t kMostBytes = 100'000;
  ContentDecoder decoder(coding, kMostBytes);
  std::string out;
  for (; !body.empty(); body.remove_prefix(std::min(piece, body.size()))) {
    if (!decoder.Add(body.substr(0, piece), out)) {
      FUZZ_CHECK(out.size() <= kMostBytes);
      FUZZ_CHECK(!decoder.Add("x", out));
      return std::nullopt;
    }
  }
  FUZZ_CHECK(out.size() <= kMostBytes);
  at_end = decoder.AtEnd();
  return out;
}

// The crawler's reader of the same head: whatever the classic one takes, it takes too, and agrees on.
void CheckWebHead(std::string_view bytes, const AnswerHead& classic, bool classic_good) {
  WebHeadReader reader;
  bool good = true;
  while (good && !bytes.empty() && !reader.complete()) {
    const std::size_t length = std::min(bytes.find('\n'), bytes.size() - 1) + 1;
    good = reader.AddLine(bytes.substr(0, length));
    bytes.remove_prefix(length);
  }
  FUZZ_CHECK(good || !classic_good);
  for (const auto& [name, value] : reader.head().fields) {
    FUZZ_CHECK(name.find_first_of(":\n") == std::string::npos && value.find('\n') == std::string::npos);
    FUZZ_CHECK(reader.head().Find(name) != nullptr);
  }
  if (!classic_good) return;
  FUZZ_CHECK(reader.complete() == classic.complete() && reader.head().status == classic.status());
  FUZZ_CHECK(reader.content_length() == classic.content_length() && reader.chunked() == classic.chunked());
  FUZZ_CHECK(reader.coding() == classic.coding());
}

// The crawler's body is the beginning of what the decoder makes of it, as far as the limit goes.
void CheckWebBody(ContentCoding coding, std::string_view bytes, std::size_t piece) {
  constexpr std::size_t kLimit = 1000;
  bool at_end = false;
  const auto whole = Decoded(coding, bytes, piece, at_end);
  WebBody body;
  body.Begin(coding, kLimit);
  auto outcome = WebBody::Outcome::kGoesOn;
  for (; !bytes.empty() && outcome == WebBody::Outcome::kGoesOn; bytes.remove_prefix(std::min(piece, bytes.size()))) {
    outcome = body.Add(bytes.substr(0, piece));
  }
  const bool ended = body.AtEnd(), truncated = body.truncated();
  const std::string text = body.Take();
  FUZZ_CHECK(text.size() <= kLimit && truncated == (outcome == WebBody::Outcome::kFull));
  if (!whole) return;
  FUZZ_CHECK(outcome != WebBody::Outcome::kBroken && text == whole->substr(0, kLimit));
  FUZZ_CHECK(truncated == (whole->size() > kLimit) && (truncated || ended == at_end));
}

}  // namespace

QUENLAR_FUZZ_TARGET(answer) {
  fuzz::Feed feed(bytes);
  const std::size_t piece = 1 + feed.Byte();
  const ContentCoding other_coding = piece % 2 == 0 ? ContentCoding::kGzip : ContentCoding::kDeflate;
  AnswerHead head, bare;
  std::string_view body, bare_body;
  const bool good = ReadHead(feed.Rest(), true, head, body);
  FUZZ_CHECK(good == ReadHead(feed.Rest(), false, bare, bare_body));
  if (good) {
    FUZZ_CHECK(head.complete() == bare.complete() && head.status() == bare.status() && body == bare_body);
    FUZZ_CHECK(head.content_length() == bare.content_length() && head.coding() == bare.coding());
    FUZZ_CHECK(head.location() == bare.location() && head.location().find('\n') == std::string::npos);
    FUZZ_CHECK(head.content_length().value_or(0) <= kMaxBodyBytes);
    if (head.complete()) {
      FUZZ_CHECK(head.status() >= 200 && head.status() <= 999 && head.status() != 407);
      FUZZ_CHECK(head.location().empty() || head.status() / 100 == 3);
    }
  }
  CheckWebHead(feed.Rest(), head, good);
  for (const ContentCoding coding : {head.coding(), other_coding}) {
    CheckWebBody(coding, body, piece);
    bool at_end = false, whole_at_end = false;
    const auto in_pieces = Decoded(coding, body, piece, at_end);
    const auto whole = Decoded(coding, body, body.size() + 1, whole_at_end);
    FUZZ_CHECK(in_pieces == whole && at_end == whole_at_end);
    if (coding == ContentCoding::kIdentity && whole) FUZZ_CHECK(*whole == body);
  }
}
