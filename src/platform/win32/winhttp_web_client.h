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
// The system looks a name up once more when it connects. What it finds then is judged before anything is sent. A proxy
// counts where the user's settings name one or a script that does; one that only the network announces is not looked
// for. Behind a script's proxy nothing but the first lookup is judged. The first lookup is made by `look_up`; empty: by
// the system too.
[[nodiscard]] std::unique_ptr<WebClient> MakeWinHttpWebClient(EventLoop& loop, const ProxyChoice& proxy,
                                                              LookUpName look_up = {});

}  // namespace quenlar
