// The crawler's web client over the system's HTTP client.
#pragma once

#include <memory>

#include "platform/event_loop.h"
#include "platform/name_lookups.h"
#include "platform/proxy_choice.h"
#include "platform/web_client.h"

namespace quenlar {

// Certificates are checked by the system's rules. HTTP/2 is spoken where the system can. The bytes of the wire are put
// together from what the system tells: the request as it was given, the body without its chunks.
//
// Names are looked up by `look_up`; empty: by the system. Plain http goes to the address that was judged and nowhere
// else. For https the system, which checks the certificate against the name, looks the name up once more when it
// connects. What it finds then is judged before a byte is sent, TLS included. Wine opens the connection all the same
// and closes it unused; only a request that is cancelled or times out in that very moment may go on there, as far as
// the check of the certificate lets it.
//
// A proxy counts where the user's settings name one or a script that does; one that only the network announces is not
// looked for. Behind a script's proxy nothing but the first lookup is judged.
[[nodiscard]] std::unique_ptr<WebClient> MakeWinHttpWebClient(EventLoop& loop, const ProxyChoice& proxy,
                                                              LookUpName look_up = {});

}  // namespace quenlar
