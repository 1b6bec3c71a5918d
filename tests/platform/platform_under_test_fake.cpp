// The fakes of tests/support, put under the same contract as the system's own implementations.
#include <optional>
#include <utility>

#include "platform_under_test.h"
#include "support/fake_platform.h"
#include "support/scripted_web_client.h"

namespace quenlar {
namespace {

// A second door to somebody else's object.
class FilesReference : public Files {
 public:
  explicit FilesReference(Files& files) : files_(files) {}
  [[nodiscard]] PathKind KindOf(const std::string& path) const override { return files_.KindOf(path); }
  [[nodiscard]] bool FileExists(const std::string& path) const override { return files_.FileExists(path); }
  [[nodiscard]] bool FolderExists(const std::string& path) const override { return files_.FolderExists(path); }
  [[nodiscard]] Result<std::vector<std::string>> Names(const std::string& folder) const override {
    return files_.Names(folder);
  }
  Status MakeFolder(const std::string& path) override { return files_.MakeFolder(path); }
  Status Read(const std::string& path, const std::function<bool(std::string_view)>& block) const override {
    return files_.Read(path, block);
  }
  [[nodiscard]] Result<std::unique_ptr<ReadableFile>> Open(const std::string& path) const override {
    return files_.Open(path);
  }
  [[nodiscard]] Result<std::unique_ptr<FileReplacement>> Replace(const std::string& path) override {
    return files_.Replace(path);
  }
  [[nodiscard]] Result<std::unique_ptr<GrowingFile>> Create(const std::string& path) override {
    return files_.Create(path);
  }
  Status Delete(const std::string& path) override { return files_.Delete(path); }
  Status Rename(const std::string& from, const std::string& to) override { return files_.Rename(from, to); }
  [[nodiscard]] Result<std::unique_ptr<FolderLock>> Lock(const std::string& folder, const std::string& name) override {
    return files_.Lock(folder, name);
  }

 private:
  Files& files_;
};

class RegistryReference : public Registry {
 public:
  explicit RegistryReference(Registry& registry) : registry_(registry) {}
  void SaveRegValue(const std::string& key, const std::string& name, const std::string& text) override {
    registry_.SaveRegValue(key, name, text);
  }
  [[nodiscard]] std::string GetRegValue(const std::string& key, const std::string& name) const override {
    return registry_.GetRegValue(key, name);
  }
  void DeleteRegKey(const std::string& key) override { registry_.DeleteRegKey(key); }
  [[nodiscard]] bool KeyExists(const std::string& key) const override { return registry_.KeyExists(key); }
  [[nodiscard]] bool ValueExists(const std::string& key, const std::string& name) const override {
    return registry_.ValueExists(key, name);
  }

 private:
  Registry& registry_;
};

class FakeTestPlatform : public TestPlatform {
 public:
  FakeTestPlatform() {
    fakes_.files.AddFolder("/folder");
    fakes_.interfaces.rows.resize(1);
    fakes_.interfaces.rows[0].name = "lo";
    fakes_.interfaces.rows[0].index = 1;
  }
  [[nodiscard]] EventLoop& loop() override { return fakes_.loop; }
  [[nodiscard]] bool LoopSleeps() const override { return false; }
  [[nodiscard]] Files& files() override { return fakes_.files; }
  [[nodiscard]] std::unique_ptr<Files> OtherFiles() override { return std::make_unique<FilesReference>(fakes_.files); }
  [[nodiscard]] std::string Folder() override { return "/folder"; }
  [[nodiscard]] std::vector<std::string> Names(const std::string& folder) override {
    std::vector<std::string> names;
    for (const std::string& path : fakes_.files.AllFiles()) {
      if (path.starts_with(folder + "/")) names.push_back(path.substr(folder.size() + 1));
    }
    return names;
  }
  [[nodiscard]] Registry& registry() override { return fakes_.registry; }
  [[nodiscard]] std::unique_ptr<Registry> ReopenRegistry() override {
    return std::make_unique<RegistryReference>(fakes_.registry);
  }
  [[nodiscard]] std::unique_ptr<PageFetcher> MakeFetcher(const std::string&, const std::string&) override {
    auto fetcher = std::make_unique<ScriptedFetcher>(fakes_.loop);
    fetcher->ServeOthers([this](const std::string& address) { return Answer(address); });
    return fetcher;
  }
  [[nodiscard]] std::unique_ptr<WebClient> MakeWebClient(const std::string&, const std::string&, LookUpName) override {
    auto client = std::make_unique<ScriptedWebClient>(fakes_.loop);
    client->ServeOthers([this](const WebRequest& request) { return WebAnswerTo(request.url); });
    return client;
  }
  void Serve(ServeHandler handler) override { handler_ = std::move(handler); }
  [[nodiscard]] std::string ServerAddress() override { return "http://127.0.0.1:80"; }
  [[nodiscard]] const CodePage& code_page() override { return fakes_.code_page; }
  [[nodiscard]] const Idna& idna() override { return fakes_.idna; }
  [[nodiscard]] const Clock& clock() override { return fakes_.clock; }
  [[nodiscard]] const TextDecoder& text_decoder() override { return fakes_.text_decoder; }
  [[nodiscard]] InterfaceTable& interfaces() override { return fakes_.interfaces; }

 private:
  std::optional<ScriptedWebAnswer> WebAnswerTo(const std::string& url) {
    if (!url.starts_with(ServerAddress() + "/")) return WebFails(WebFailure::kNoConnection);
    const ServedAnswer served = handler_({url.substr(ServerAddress().size())});
    ScriptedWebAnswer answer{.status = served.status, .body = served.body, .ip = "127.0.0.1"};
    answer.fields = {{"Content-Type", served.content_type}};
    if (!served.location.empty()) answer.fields.emplace_back("Location", served.location);
    return answer;
  }
  std::optional<ScriptedAnswer> Answer(const std::string& address) {
    std::string path = address;
    if (!path.starts_with(ServerAddress()) || !handler_) return Failure();
    path.erase(0, ServerAddress().size());
    ScriptedAnswer answer;
    for (ServedAnswer served = handler_({path});; served = handler_({path})) {
      if (served.location.empty()) {
        answer.body = served.body;
        return answer;
      }
      path = served.location;
      answer.redirects.push_back(ServerAddress() + path);
    }
  }

  FakePlatform fakes_;
  ServeHandler handler_;
};

}  // namespace

std::unique_ptr<TestPlatform> MakeFakeTestPlatform() { return std::make_unique<FakeTestPlatform>(); }

}  // namespace quenlar
