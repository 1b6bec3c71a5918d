// One request and its answer over the system's HTTP client.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/answer_head.h"
#include "platform/content_decoder.h"
#include "platform/win32/windows_api.h"
#include "platform/wire_address.h"

namespace quenlar::win32 {

// What became of an exchange. kFirstBytes may come before kWhole and kFailed; one of the others ends it.
struct ExchangeReport {
  enum class Kind { kFirstBytes, kRedirect, kWhole, kFailed };
  Kind kind = Kind::kFailed;
  std::string text;  // the Location as it came, or the decoded body
};

// The system calls back on threads of its own, and sometimes inside a call that is made to it. So an exchange puts
// every event into a queue. A thread that finds no other thread working on the queue works on it until it is empty. So
// two threads never work at the same time, and no lock is held while the system is called. The handles of an exchange
// that is given up are closed by the thread that is working, when it is done.
class Exchange : public std::enable_shared_from_this<Exchange> {
 public:
  // Called on any thread, also inside Start, never two at a time.
  using Sink = std::function<void(ExchangeReport report)>;

  // `session` must have been opened asynchronous and been given OnStatus.
  [[nodiscard]] static std::shared_ptr<Exchange> Start(HINTERNET session, const WireAddress& address,
                                                       std::chrono::milliseconds response_limit, Sink sink);
  explicit Exchange(Sink sink) : sink_(std::move(sink)) {}
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;

  // Gives the exchange up and returns at once. It reports nothing more, except a report that another thread is making
  // right now. The system may hold on to the request for a while.
  void Abandon();

  static void CALLBACK OnStatus(HINTERNET handle, DWORD_PTR context, DWORD status, void* information, DWORD length);

 private:
  struct Event {
    enum class Kind { kConnecting, kSent, kHead, kAvailable, kRead, kError };
    Kind kind;
    DWORD number = 0;  // bytes available or read, or the error
  };

  bool Open(HINTERNET session, const WireAddress& address, std::chrono::milliseconds response_limit);
  bool Send();
  void Take(Event event);
  void Work();
  void Handle(const Event& event);
  void OnHead();
  void OnRead(DWORD bytes);
  void OnError(DWORD error);
  void AskForMore();
  void End();
  // Every kind but kFirstBytes ends the exchange.
  void Report(ExchangeReport::Kind kind, std::string text = {});
  // Fails when there is no memory. When there is not even enough to report that, the download falls silent and the
  // watchdog cancels it.
  void FailForWantOfMemory();
  void CloseHandles();
  [[nodiscard]] std::optional<std::string> HeaderLines() const;

  const Sink sink_;
  HINTERNET connection_ = nullptr;
  HINTERNET request_ = nullptr;
  std::shared_ptr<Exchange> self_;  // until the system has let go of the request

  // Used only by the thread that works on the queue.
  AnswerHead head_;
  std::optional<ContentDecoder> decoder_;
  std::string body_;
  std::uint64_t received_ = 0;     // bytes, before they are decoded
  bool connected_afresh_ = false;  // the connection has not been used by an earlier request
  int sends_ = 0;
  std::array<char, 64 * 1024> buffer_;

  std::mutex mutex_;  // guards what follows; never held while the system is called
  std::deque<Event> events_;
  bool working_ = true;    // a thread works on the queue; at first it is the one that calls Start
  bool finished_ = false;  // nothing more is to be done or reported
  bool closed_ = false;    // the handles have been given back, or are about to be
};

}  // namespace quenlar::win32
