#include "platform/posix/curl_web_client.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include <curl/curl.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include "platform/posix/curl_web_exchange.h"
#include "platform/posix/look_up_name.h"
#include "platform/posix/proxy_environment.h"
#include "platform/web_dispatcher.h"

namespace quenlar {
namespace {

constexpr std::size_t kSpareExchanges = 64;  // kept for the next requests
constexpr rlim_t kDescriptors = 16 * 1024;   // as many as the process would like to have
constexpr long kNoLimit = 1'000'000;         // of connections: the dispatcher has its own

// A good half of the descriptors that the process may have; files and the resolver's threads have the others.
std::size_t MostConnections() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 256;
  if (limit.rlim_cur < kDescriptors && limit.rlim_cur < limit.rlim_max) {
    limit.rlim_cur = std::min(kDescriptors, limit.rlim_max);
    static_cast<void>(setrlimit(RLIMIT_NOFILE, &limit));
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 256;
  }
  return static_cast<std::size_t>(std::min(limit.rlim_cur, kDescriptors)) / 2;
}

// The file of certificates that curl was built for; empty when it looks elsewhere.
std::string SystemAuthorities() {
  const curl_version_info_data* const facts = curl_version_info(CURLVERSION_NOW);
  return facts->cainfo == nullptr ? "" : facts->cainfo;
}

// Curl's multi interface, driven by the loop's descriptors. What it has to tell is posted to the loop and looked up by
// the exchange's number when its turn comes.
class CurlWebTransport final : public WebTransport, public IoSource, public CurlSockets {
 public:
  CurlWebTransport(PosixEventLoop& loop, CurlWebOptions options);
  CurlWebTransport(const CurlWebTransport&) = delete;
  CurlWebTransport& operator=(const CurlWebTransport&) = delete;
  ~CurlWebTransport() override;

  void SetTransportListener(WebTransportListener* listener) override { listener_ = listener; }
  [[nodiscard]] bool UsesProxy(const WireAddress& target) const override { return !ProxyFor(target).empty(); }
  void Begin(const WebExchange& exchange) override;
  [[nodiscard]] std::chrono::steady_clock::time_point LastByte(WebExchangeId id) const override {
    return exchanges_.at(id)->last_byte();
  }
  [[nodiscard]] Outcome Take(WebExchangeId id) override;
  void CloseIdle(WebHostId host) override;

  void OnReady(int fd, Readiness readiness) override;
  [[nodiscard]] std::optional<std::chrono::steady_clock::time_point> Deadline() const override { return deadline_; }
  void OnDeadline() override { Act(CURL_SOCKET_TIMEOUT, 0); }

 private:
  // A host's connection.
  struct Line {
    int fd = -1;
    bool busy = false;
    WireAddress target = {};  // of its last request, with the address that this went to
    std::optional<IpAddress> address = {};
  };

  static int OnSocket(CURL* handle, curl_socket_t fd, int what, void* self, void* of_socket);
  static int OnTimer(CURLM* multi, long milliseconds, void* self);
  void OnOpened(WebHostId host, int fd) override;
  void OnClosing(int fd) override;

  [[nodiscard]] std::string ProxyFor(const WireAddress& target) const;
  void Act(curl_socket_t fd, int bits);
  void Collect();
  void ForgetDescriptor(WebHostId host, Line& line);
  void PostHead(WebExchangeId id);
  void PostEnd(WebExchangeId id);
  template <typename Call>
  void Post(Call call);

  PosixEventLoop& loop_;
  const CurlWebOptions options_;
  WebTransportListener* listener_ = nullptr;
  CURLM* multi_ = nullptr;
  std::optional<std::chrono::steady_clock::time_point> deadline_;
  std::unordered_map<WebExchangeId, std::unique_ptr<CurlWebExchange>> exchanges_;
  std::vector<std::unique_ptr<CurlWebExchange>> spare_;
  std::unique_ptr<CurlWebExchange> broom_;  // see CloseIdle
  std::vector<WebExchangeId> heads_;        // arrived, not yet posted
  std::unordered_map<WebHostId, Line> lines_;
  std::vector<WebHostId> by_descriptor_;  // 0: not of a host's connection
  bool ending_ = false;
  std::shared_ptr<char> alive_ = std::make_shared<char>();  // posted calls hold it weakly
};

CurlWebTransport::CurlWebTransport(PosixEventLoop& loop, CurlWebOptions options)
    : loop_(loop), options_(std::move(options)) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  spare_.reserve(kSpareExchanges);  // a cancel takes no memory
  multi_ = curl_multi_init();
  if (multi_ != nullptr) {
    curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &OnSocket);
    curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, &OnTimer);
    curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
    curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, kNoLimit);
    curl_multi_setopt(multi_, CURLMOPT_PIPELINING, static_cast<long>(CURLPIPE_NOTHING));
  }
  loop_.AddSource(*this);
}

CurlWebTransport::~CurlWebTransport() {
  ending_ = true;
  for (auto& [id, exchange] : exchanges_) curl_multi_remove_handle(multi_, exchange->handle());
  exchanges_.clear();
  spare_.clear();
  broom_.reset();
  curl_multi_cleanup(multi_);
  loop_.RemoveSource(*this);
  curl_global_cleanup();
}

std::string CurlWebTransport::ProxyFor(const WireAddress& target) const {
  switch (options_.proxy.kind) {
    case ProxyChoice::Kind::kNone:
      return "";
    case ProxyChoice::Kind::kGiven:
      return options_.proxy.address;
    case ProxyChoice::Kind::kSystem:
      return ProxyFromEnvironment(target);
  }
  return "";
}

void CurlWebTransport::Begin(const WebExchange& wanted) {
  if (spare_.empty()) spare_.push_back(std::make_unique<CurlWebExchange>(options_.authorities, *this, heads_));
  CurlWebExchange& exchange = *(exchanges_[wanted.id] = std::move(spare_.back()));
  spare_.pop_back();
  Line& line = lines_[wanted.host];
  line.busy = true;
  line.target = wanted.target;
  line.address = wanted.address;
  const bool ready = exchange.Prepare(wanted, wanted.address ? "" : ProxyFor(wanted.target));
  if (ready && multi_ != nullptr && curl_multi_add_handle(multi_, exchange.handle()) == CURLM_OK) {
    // The request goes out now. Otherwise it would wait until all pages that have arrived together are read.
    Act(CURL_SOCKET_TIMEOUT, 0);
    return;
  }
  exchange.End(CURLE_OUT_OF_MEMORY);
  PostEnd(wanted.id);
}

// Of an exchange that is not over, too: its connection is closed then.
WebTransport::Outcome CurlWebTransport::Take(WebExchangeId id) {
  auto exchange = std::move(exchanges_.extract(id).mapped());
  if (multi_ != nullptr) curl_multi_remove_handle(multi_, exchange->handle());
  Outcome outcome;
  const auto line = lines_.find(exchange->host());
  line->second.busy = false;
  if (exchange->opened_in_vain()) ForgetDescriptor(exchange->host(), line->second);
  outcome.kept = line->second.fd >= 0 && !exchange->behind_proxy();
  if (!outcome.kept && line->second.fd < 0) lines_.erase(line);
  outcome.answer = exchange->TakeAnswer();
  if (spare_.size() < kSpareExchanges) spare_.push_back(std::move(exchange));
  return outcome;
}

// Curl closes a socket that never came to be connected without a word. Its number may be in use again by now.
void CurlWebTransport::ForgetDescriptor(WebHostId host, Line& line) {
  const int fd = std::exchange(line.fd, -1);
  if (fd >= 0 && by_descriptor_[static_cast<std::size_t>(fd)] == host) by_descriptor_[static_cast<std::size_t>(fd)] = 0;
}

// Curl has no call for it. It would find the dead connection out within a second, but then it goes through all of them,
// and from the beginning again behind each dead one: with thousands of hosts one after the other that is most of the
// time. When it looks for a connection to that very host it finds it at once. So it is asked for one, and gets no
// socket.
void CurlWebTransport::CloseIdle(WebHostId host) {
  const auto line = lines_.find(host);
  if (line == lines_.end() || line->second.fd < 0) return;
  by_descriptor_[static_cast<std::size_t>(line->second.fd)] = 0;
  shutdown(line->second.fd, SHUT_RDWR);
  if (!broom_) broom_ = std::make_unique<CurlWebExchange>(options_.authorities, *this, heads_);
  const Line gone = std::move(line->second);
  lines_.erase(line);
  const WebRequest request;
  const WebExchange nobody{.id = 0, .host = 0, .request = request, .target = gone.target, .address = gone.address};
  if (!broom_->Prepare(nobody, "") || curl_multi_add_handle(multi_, broom_->handle()) != CURLM_OK) return;
  Act(CURL_SOCKET_TIMEOUT, 0);
  curl_multi_remove_handle(multi_, broom_->handle());
}

void CurlWebTransport::OnOpened(WebHostId host, int fd) {
  const auto index = static_cast<std::size_t>(fd);
  if (index >= by_descriptor_.size()) by_descriptor_.resize(index + 1);
  by_descriptor_[index] = host;
  lines_[host].fd = fd;
}

void CurlWebTransport::OnClosing(int fd) {
  const auto index = static_cast<std::size_t>(fd);
  const WebHostId host = index < by_descriptor_.size() ? std::exchange(by_descriptor_[index], 0) : 0;
  if (host == 0 || ending_) return;
  const auto line = lines_.find(host);
  if (line == lines_.end() || line->second.fd != fd) return;
  line->second.fd = -1;
  if (line->second.busy) return;
  lines_.erase(line);
  Post([this, host] { listener_->OnIdleClosed(host); });
}

void CurlWebTransport::OnReady(int fd, Readiness readiness) {
  Act(fd, (readiness.readable ? CURL_CSELECT_IN : 0) | (readiness.writable ? CURL_CSELECT_OUT : 0) |
              (readiness.broken ? CURL_CSELECT_ERR : 0));
}

void CurlWebTransport::Act(curl_socket_t fd, int bits) {
  if (fd == CURL_SOCKET_TIMEOUT) deadline_.reset();
  int running = 0;
  curl_multi_socket_action(multi_, fd, bits, &running);
  Collect();
}

int CurlWebTransport::OnSocket(CURL*, curl_socket_t fd, int what, void* self, void*) {
  auto& transport = *static_cast<CurlWebTransport*>(self);
  if (what == CURL_POLL_REMOVE) {
    transport.loop_.Forget(fd);
  } else {
    transport.loop_.Watch(fd, (what & CURL_POLL_IN) != 0, (what & CURL_POLL_OUT) != 0, transport);
  }
  return 0;
}

int CurlWebTransport::OnTimer(CURLM*, long milliseconds, void* self) {
  auto& deadline = static_cast<CurlWebTransport*>(self)->deadline_;
  deadline.reset();
  if (milliseconds >= 0) deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  return 0;
}

// Posts what curl has brought.
void CurlWebTransport::Collect() {
  for (const WebExchangeId id : heads_) PostHead(id);
  heads_.clear();
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    CurlWebExchange* exchange = nullptr;
    curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &exchange);
    exchange->End(message->data.result);
    PostEnd(exchange->id());
  }
}

template <typename Call>
void CurlWebTransport::Post(Call call) {
  loop_.Post([alive = std::weak_ptr(alive_), call = std::move(call)] {
    if (!alive.expired()) call();
  });
}

void CurlWebTransport::PostHead(WebExchangeId id) {
  Post([this, id] {
    const auto exchange = exchanges_.find(id);
    if (exchange == exchanges_.end()) return;
    const WebHead head = exchange->second->head();  // the exchange may end inside the call
    listener_->OnTransportHead(id, head);
  });
}

void CurlWebTransport::PostEnd(WebExchangeId id) {
  Post([this, id] {
    if (exchanges_.contains(id)) listener_->OnTransportEnd(id);
  });
}

}  // namespace

std::unique_ptr<WebClient> MakeCurlWebClient(PosixEventLoop& loop, CurlWebOptions options) {
  const std::size_t most_connections = MostConnections();
  if (options.authorities.empty()) options.authorities = SystemAuthorities();
  LookUpName look_up = options.look_up ? options.look_up : LookUpName(&LookUpByGetaddrinfo);
  return std::make_unique<WebDispatcher>(loop, std::make_unique<CurlWebTransport>(loop, std::move(options)),
                                         std::move(look_up), most_connections);
}

}  // namespace quenlar
