// One GET over the system's HTTP client, whatever is made of its answer.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/win32/windows_api.h"
#include "platform/wire_address.h"

namespace quenlar::win32 {

// The system calls back on threads of its own, and sometimes inside a call that is made to it. So this class puts every
// event into a queue. A thread that finds no other thread working on the queue works on it until it is empty. So two
// threads never work at the same time, and no lock is held while the system is called. The handles of a call that is
// given up are closed by the thread that is working, when it is done.
//
// The members that a derived class implements are called on any thread, also inside Begin, never two at a time. What
// they throw for want of memory ends in OnNoMemory.
class HttpCall : public std::enable_shared_from_this<HttpCall> {
 public:
  HttpCall() = default;
  HttpCall(const HttpCall&) = delete;
  HttpCall& operator=(const HttpCall&) = delete;
  virtual ~HttpCall() = default;

  struct Limits {
    std::chrono::milliseconds response;  // to the first byte of the answer; 0: the session's limits hold for the rest
    std::chrono::milliseconds connect{0};
  };
  // Sends the request with these header lines, each with its line end. `session` must have been opened asynchronous and
  // been given OnStatus. The connection goes to `ip` (IPv6 in brackets); where that is empty, to an address that the
  // system looks up.
  void Begin(HINTERNET session, const WireAddress& address, const Limits& limits, std::wstring headers,
             const std::string& ip = "");

  // Gives the call up and returns at once. It tells nothing more, except what another thread is telling right now. The
  // system may hold on to the request for a while.
  void Abandon();

  static void CALLBACK OnStatus(HINTERNET handle, DWORD_PTR context, DWORD status, void* information, DWORD length);

 protected:
  enum class Next { kReadOn, kFinish };
  // The header lines as the system gives them; none when there are none or too many.
  virtual Next OnHead(const std::optional<std::string>& lines) = 0;
  virtual Next OnBytes(std::string_view bytes) = 0;
  // The last three end the call.
  virtual void OnEnd() = 0;
  virtual void OnFailure(DWORD error) = 0;
  virtual void OnNoMemory() = 0;

  // Asked in the system's own callback, at any time and on any thread, before a connection is made. False: it must not
  // be made, and the call fails with kForbidden.
  [[nodiscard]] virtual bool MayConnect(std::wstring_view address) const = 0;
  static constexpr DWORD kForbidden = 1;  // no error of WinHTTP

  // Whether the request has been sent, and with it whatever comes before it is done.
  [[nodiscard]] bool sent() const { return sent_; }
  // What the system has said about the server's certificate (WINHTTP_CALLBACK_STATUS_FLAG_...).
  [[nodiscard]] DWORD certificate_faults() const { return certificate_faults_; }

 private:
  struct Event {
    enum class Kind { kConnecting, kSent, kHead, kAvailable, kRead, kCertificate, kError };
    Kind kind;
    DWORD number = 0;  // bytes available or read, the error, or what is wrong with the certificate
  };

  bool Open(HINTERNET session, const WireAddress& address, const Limits& limits, const std::string& ip);
  bool Send();
  void OnConnecting(std::wstring_view address);
  void Take(Event event);
  void Work();
  void Handle(const Event& event);
  void OnHeadAvailable();
  void OnRead(DWORD bytes);
  void OnError(DWORD error);
  void AskForMore();
  void Finish();
  void CloseHandles();
  [[nodiscard]] std::optional<std::string> HeaderLines() const;

  std::wstring headers_;
  HINTERNET session_ = nullptr;  // closed no sooner than the call has been given up or has ended
  HINTERNET connection_ = nullptr;
  HINTERNET request_ = nullptr;
  std::shared_ptr<HttpCall> self_;  // until the system has let go of the request

  // Used only by the thread that works on the queue.
  bool has_head_ = false;
  bool sent_ = false;
  bool connected_afresh_ = false;  // the connection has not been used by an earlier request
  DWORD certificate_faults_ = 0;
  int sends_ = 0;
  std::array<char, 64 * 1024> buffer_;

  std::mutex mutex_;  // guards what follows; never held while the system is called
  std::deque<Event> events_;
  bool working_ = true;    // a thread works on the queue; at first it is the one that calls Begin
  bool finished_ = false;  // nothing more is to be done or told
  bool closed_ = false;    // the handles have been given back, or are about to be
};

}  // namespace quenlar::win32
