// Compressed bodies: right, wrong, nested, explosive.
#include <zlib.h>

#include "endpoints.h"

namespace quenlar::hostile {
namespace {

constexpr int kGzip = 15 + 16, kZlib = 15, kRaw = -15;

// `times` copies of `text`, compressed.
std::string Compress(const std::string& text, int window, long times = 1) {
  z_stream stream{};
  deflateInit2(&stream, times > 1 ? Z_BEST_SPEED : Z_BEST_COMPRESSION, Z_DEFLATED, window, 9, Z_DEFAULT_STRATEGY);
  std::string out;
  std::string block(64 * 1024, '\0');
  for (long i = 0; i <= times; ++i) {
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = i < times ? static_cast<uInt>(text.size()) : 0;
    do {
      stream.next_out = reinterpret_cast<Bytef*>(block.data());
      stream.avail_out = static_cast<uInt>(block.size());
      deflate(&stream, i < times ? Z_NO_FLUSH : Z_FINISH);
      out.append(block, 0, block.size() - stream.avail_out);
    } while (stream.avail_out == 0);
  }
  deflateEnd(&stream);
  return out;
}

Endpoint Encoded(const std::string& lines, const std::string& body) {
  return [lines, body](Connection& connection, const Request&) { return connection.SendPage(body, lines); };
}

const std::string kText = "write to someone@mail.example.org";

// A quarter of a gigabyte in about a megabyte.
bool Bomb(Connection& connection, const Request&) {
  static const std::string bomb = Compress(std::string(1 << 20, ' '), kGzip, 256);
  return connection.SendPage(bomb, "Content-Encoding: gzip");
}

bool EmptyMembers(Connection& connection, const Request&) {
  const std::string member = Compress("", kGzip);
  std::string members;
  while (members.size() < 256 * 1024) members += member;
  connection.Send("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n");
  while (connection.Send(members)) {
  }
  return false;
}

}  // namespace

void AddCompression(Endpoints& endpoints) {
  const std::string gzip = Compress(kText, kGzip);
  endpoints["/gzip/right"] = Encoded("Content-Encoding: gzip", gzip);
  endpoints["/gzip/x-gzip"] = Encoded("Content-Encoding: X-GZip", gzip);
  endpoints["/gzip/two-members"] = Encoded("Content-Encoding: gzip", gzip + gzip);
  endpoints["/gzip/followed"] = Encoded("Content-Encoding: gzip", gzip + std::string(100, '\0') + "rest");
  endpoints["/gzip/nothing"] = Encoded("Content-Encoding: gzip", "");
  endpoints["/gzip/cut"] = Encoded("Content-Encoding: gzip", gzip.substr(0, gzip.size() / 2));
  endpoints["/gzip/no-gzip"] = Encoded("Content-Encoding: gzip", kText);
  std::string corrupt = gzip;
  corrupt[gzip.size() - 6] = static_cast<char>(~corrupt[gzip.size() - 6]);  // the checksum
  endpoints["/gzip/corrupt"] = Encoded("Content-Encoding: gzip", corrupt);
  endpoints["/gzip/bomb"] = Bomb;
  endpoints["/gzip/empty-members"] = EmptyMembers;
  endpoints["/deflate/zlib"] = Encoded("Content-Encoding: deflate", Compress(kText, kZlib));
  endpoints["/deflate/raw"] = Encoded("Content-Encoding: deflate", Compress(kText, kRaw));
  endpoints["/deflate/cut"] = Encoded("Content-Encoding: deflate", Compress(kText, kZlib).substr(0, 10));

  endpoints["/nested/one-line"] = Encoded("Content-Encoding: gzip, gzip", Compress(gzip, kGzip));
  endpoints["/nested/two-lines"] = Encoded("Content-Encoding: gzip\r\nContent-Encoding: gzip", Compress(gzip, kGzip));
  endpoints["/unasked/brotli"] = Encoded("Content-Encoding: br", "\x0b\x02\x80hello\x03");
  endpoints["/unasked/zstd"] = Encoded("Content-Encoding: zstd", "\x28\xb5\x2f\xfd");
  endpoints["/unasked/unknown"] = Encoded("Content-Encoding: rot13", kText);
  endpoints["/unasked/transfer"] = Encoded("Transfer-Encoding: gzip", gzip);
  endpoints["/identity"] = Encoded("Content-Encoding: identity", kText);
}

}  // namespace quenlar::hostile
