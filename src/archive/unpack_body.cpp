#include "archive/unpack_body.h"

#include "page/html_blanks.h"
#include "platform/web_body.h"

namespace quenlar {
namespace {

// A broken body gives what stands before the break. Raw deflate data has no first bytes to be known by: markup does not
// unpack.
UnpackOutcome Inflate(ContentCoding coding, std::string_view body, std::size_t limit, std::string& out) {
  WebBody inflated;
  inflated.Begin(coding, limit);
  const bool broken = inflated.Add(body) == WebBody::Outcome::kBroken;
  out = inflated.Take();
  return broken && TrimHtmlBlanks(body).starts_with("<") ? UnpackOutcome::kNotPacked : UnpackOutcome::kUnpacked;
}

}  // namespace

UnpackOutcome UnpackBody(BodyCoding coding, std::string_view body, std::size_t limit, std::string& out) {
  switch (coding) {
    case BodyCoding::kGzip:
      if (!body.starts_with("\x1F\x8B")) return UnpackOutcome::kNotPacked;
      return Inflate(ContentCoding::kGzip, body, limit, out);
    case BodyCoding::kDeflate:
      return Inflate(ContentCoding::kDeflate, body, limit, out);
    case BodyCoding::kBrotli:
    case BodyCoding::kZstd:
      break;
  }
  return UnpackOutcome::kUnknown;
}

}  // namespace quenlar
