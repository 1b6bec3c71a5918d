#include "archive/unpack_body.h"

#include <algorithm>

#include "page/html_blanks.h"
#include "platform/inflate.h"
#include "platform/web_body.h"

namespace quenlar {
namespace {

// A broken body gives what stands before the break. Not all codings have first bytes to be known by, but markup does
// not unpack in any.
bool IsMarkup(std::string_view body) { return TrimHtmlBlanks(body).starts_with("<"); }

UnpackOutcome Inflate(ContentCoding coding, std::string_view body, std::size_t limit, std::string& out) {
  WebBody inflated;
  inflated.Begin(coding, limit);
  const bool broken = inflated.Add(body) == WebBody::Outcome::kBroken;
  out = inflated.Take();
  // Gzip has been known by its first bytes.
  const bool no_packing = IsMarkup(body) || (coding == ContentCoding::kDeflate && out.empty());
  return broken && no_packing ? UnpackOutcome::kNotPacked : UnpackOutcome::kUnpacked;
}

UnpackOutcome Unpack(StreamInflater* inflater, std::string_view body, std::size_t limit, std::string& out) {
  constexpr std::size_t kPiece = 256u << 10;
  if (inflater == nullptr) return UnpackOutcome::kUnknown;
  const bool markup = IsMarkup(body);
  StreamInflater::Step step{StreamInflater::Outcome::kGoesOn, 0, 0};
  while (out.size() < limit) {
    const std::size_t before = out.size();
    out.resize(std::min(limit, before + kPiece));
    step = inflater->Inflate(body, out.data() + before, out.size() - before);
    out.resize(before + step.given);
    body.remove_prefix(step.taken);
    const bool stuck = step.given == 0 && step.taken == 0;
    if (step.outcome == StreamInflater::Outcome::kBroken || stuck) break;
    if (step.outcome != StreamInflater::Outcome::kEnd) continue;
    if (body.empty()) break;
    inflater->Begin();  // another frame continues the body
  }
  const bool broken = step.outcome == StreamInflater::Outcome::kBroken;
  return broken && (markup || out.empty()) ? UnpackOutcome::kNotPacked : UnpackOutcome::kUnpacked;
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
      return Unpack(MakeBrotliInflater().get(), body, limit, out);
    case BodyCoding::kZstd:
      return Unpack(MakeZstdInflater({}).get(), body, limit, out);
  }
  return UnpackOutcome::kUnknown;
}

}  // namespace quenlar
