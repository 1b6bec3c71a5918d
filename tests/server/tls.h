// HTTPS with certificates that are right or wrong in some way, and ports that speak TLS badly.
#pragma once

#include <string>

namespace quenlar::hostile {

// Serves on ports of its own, from now to the end of the process.
struct TlsPorts {
  int right = 0;          // for 127.0.0.1 and localhost
  int asks = 0;           // a right one, and the client is asked for his, which he need not have
  int expired = 0;        // a right one, until yesterday
  int wrong_name = 0;     // for other.example
  int stranger = 0;       // a right one, but signed by an authority that nobody knows
  int not_yet = 0;        // a right one, from tomorrow on
  int self_signed = 0;    // a right one that nobody but itself has signed
  int forged = 0;         // it names the known authority, but somebody else has signed it
  int keyless = 0;        // a right one, but its server has another key than the one in it
  int keyless_tls12 = 0;  // the same, and nothing newer than TLS 1.2 is spoken
  int old = 0;            // a right one, but nothing newer than TLS 1.0 is spoken
  int garbage = 0;        // whatever is said, the answer is noise
  int downgrade = 0;      // right, and each answer is a redirect to plain http
  int site = 0;           // right, and a small site, see PageOfTheClub
  int counting = 0;       // right, and its answer is how many clients have said anything to it, TLS included
  std::string authority;  // the certificate of the authority that has signed the others (PEM)
};
TlsPorts ServeTls(int plain_port);

}  // namespace quenlar::hostile
