#include "archive/harvest.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <string>
#include <utility>

#include "archive/ordered_work.h"
#include "archive/sources.h"

namespace quenlar {
namespace {

constexpr std::uint64_t kSmall = 1u << 20;        // a file that one thread reads as a whole
constexpr std::size_t kMostInMemory = 48u << 20;  // bytes of work that has been given and not taken back,
constexpr std::size_t kMorePerThread = 2u << 20;  // and so many more for every thread
constexpr std::size_t kMostRoom = 16u << 20, kLeastRoom = 1u << 20, kAllRooms = 64u << 20;  // of the threads' members

void Append(HarvestPortion& all, HarvestPortion portion) {
  std::move(portion.pages.begin(), portion.pages.end(), std::back_inserter(all.pages));
  all.counts.pages += portion.counts.pages;
  all.damaged += portion.damaged;
  if (!portion.failure.ok()) all.failure = portion.failure;
}

}  // namespace

// An input that is being read.
struct Harvest::Active {
  HarvestInput input;
  std::unique_ptr<ReadableFile> file;
  std::unique_ptr<FileSource> source;
  std::unique_ptr<InputReader> reader;
  HarvestPlace place;
  InputKind kind = InputKind::kEmpty;
  std::size_t under_way = 0;  // pieces of work that have not been taken
  bool all_given = false;     // there is no more work
  bool has_ended = false;     // the work under way only waits for its turn to say so
  bool of_walk = false;       // it stands for a folder that cannot be read
  std::size_t damaged = 0;
  Status failure;
};

struct Harvest::Pool {
  OrderedWork<HarvestTools, HarvestPortion> work;
  std::deque<std::shared_ptr<Active>> inputs;  // of the work under way, in its order
};

Harvest::Harvest(const Files& files, ByteSource& standard_input, HarvestSettings settings, HarvestView& view)
    : files_(files), standard_input_(standard_input), settings_(std::move(settings)), view_(view) {
  const std::size_t jobs = std::max<std::size_t>(settings_.jobs, 1);
  const std::size_t threads = jobs == 1 ? 0 : jobs;
  const std::size_t room = std::clamp(kAllRooms / jobs, kLeastRoom, kMostRoom);
  pool_.reset(new Pool{{threads, kMostInMemory + kMorePerThread * threads,  // check: raw-new an aggregate in place
                        [room] { return std::make_unique<HarvestTools>(room); }},
                       {}});
}

Harvest::~Harvest() = default;

void Harvest::Run(InputWalk& walk) {
  while (goes_on_) {
    while (goes_on_ && pool_->work.HasRoom() && AddWork(walk)) {
    }
    if (!goes_on_ || pool_->work.empty()) break;
    goes_on_ = TakeOutcome();
  }
}

// Gives the pool one more piece of work, or gets nearer to one. False when there is none for now.
bool Harvest::AddWork(InputWalk& walk) {
  if (!current_) {
    Result<std::optional<HarvestInput>> next = walk.Next();
    if (!next.ok()) {
      const auto folder = std::make_shared<Active>();
      folder->of_walk = true;
      AddEnd(folder, next.status());
      return true;
    }
    return next.value() && BeginInput(std::move(*next.value()));
  }
  HarvestWork work;
  std::size_t weight = 0;
  switch (current_->reader->Next(work, weight)) {
    case InputReader::Step::kWait:
      return false;
    case InputReader::Step::kWork:
      ++current_->under_way;
      pool_->inputs.push_back(current_);
      pool_->work.Add(std::move(work), weight);
      return true;
    case InputReader::Step::kEnd:
      break;
  }
  const std::shared_ptr<Active> done = std::exchange(current_, nullptr);
  done->kind = done->reader->kind();
  done->all_given = true;
  if (done->under_way == 0) AddEnd(done);
  return true;
}

bool Harvest::BeginInput(HarvestInput input) {
  const auto active = std::make_shared<Active>();
  active->input = std::move(input);
  const bool standard_input = active->input.path.empty();
  if (!standard_input) {
    Result<std::unique_ptr<ReadableFile>> file = files_.Open(active->input.path);
    if (file.ok())
      active->file = file.take();
    else
      active->failure = file.status();
  }
  const bool plain = active->file && active->file->size();
  std::optional<HarvestPlace> place = HarvestPlace{};
  if (active->failure.ok()) place = view_.PlaceOf(active->input, plain ? active->file.get() : nullptr);
  if (!place) {
    AddEnd(active);
    return true;
  }
  active->place = *place;
  if (active->file) active->source = std::make_unique<FileSource>(*active->file, 0);
  if (plain && *active->file->size() <= kSmall) {
    AddWholeFile(active);
    return true;
  }
  ByteSource& source = active->source ? static_cast<ByteSource&>(*active->source) : standard_input_;
  Result<std::string> beginning = std::string();
  if (active->failure.ok()) beginning = ReadUpTo(source, kKindBytes);
  if (!beginning.ok()) active->failure = beginning.status();
  if (!active->failure.ok()) {
    AddEnd(active, active->failure);
    return true;
  }
  active->reader = std::make_unique<InputReader>(active->input, plain ? active->file.get() : nullptr, source,
                                                 beginning.take(), active->place, settings_.reading);
  current_ = active;
  return true;
}

// One thread reads all of it.
void Harvest::AddWholeFile(const std::shared_ptr<Active>& active) {
  constexpr std::size_t kLeastWeight = 64u << 10;
  active->under_way = 1;
  active->all_given = true;
  pool_->inputs.push_back(active);
  const HarvestWork work = [this, active](HarvestTools& tools) {
    HarvestPortion all;
    all.behind = {*active->file->size(), 0};
    Result<std::string> beginning = ReadUpTo(*active->source, kKindBytes);
    if (!beginning.ok()) {
      all.failure = beginning.status();
      return all;
    }
    InputReader reader(active->input, active->file.get(), *active->source, beginning.take(), active->place,
                       settings_.reading);
    HarvestWork step;
    for (std::size_t weight = 0; reader.Next(step, weight) == InputReader::Step::kWork;) {
      HarvestPortion portion = step(tools);
      if (reader.Take(portion, tools)) Append(all, std::move(portion));
    }
    active->kind = reader.kind();
    return all;
  };
  pool_->work.Add(work, static_cast<std::size_t>(*active->file->size()) + kLeastWeight);
}

void Harvest::AddEnd(const std::shared_ptr<Active>& active, const Status& failure) {
  if (!failure.ok()) active->failure = failure;
  active->all_given = active->has_ended = true;
  active->under_way = 1;
  pool_->inputs.push_back(active);
  pool_->work.Add([](HarvestTools&) { return HarvestPortion(); }, 0);
}

// Takes the outcome of the oldest piece of work. False when the harvest is to end.
bool Harvest::TakeOutcome() {
  HarvestPortion portion = pool_->work.Next();
  const std::shared_ptr<Active> active = std::move(pool_->inputs.front());
  pool_->inputs.pop_front();
  --active->under_way;
  if (active->has_ended) return EndIfDone(*active);
  if (!active->reader || active->reader->Take(portion, pool_->work.own_tools())) {
    active->damaged += portion.damaged;
    if (!portion.failure.ok()) active->failure = portion.failure;
    if (!view_.OnPortion(active->input, portion)) return false;
  }
  return EndIfDone(*active);
}

// Reports the end of an input when all of its work has been taken. False when the harvest is to end.
bool Harvest::EndIfDone(Active& active) {
  if (!active.all_given || active.under_way > 0) return true;
  if (active.of_walk) {
    view_.OnFailure(active.failure);
    return true;
  }
  return view_.OnInputEnd({active.input, active.kind, active.damaged, active.failure});
}

}  // namespace quenlar
