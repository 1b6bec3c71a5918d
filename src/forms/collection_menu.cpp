#include "forms/collection_menu.h"

#include <utility>

#include "base/product.h"
#include "engine/why.h"
#include "forms/open_web_page.h"

namespace quenlar {
namespace {

constexpr std::size_t kMostPlaces = 20;  // of an address that an answer names

}  // namespace

std::vector<ui::ListView::Command> CollectionMenu::Commands() {
  std::vector<ui::ListView::Command> commands = {
      {.caption = "&Where it was found ...", .run = [this](const Rows& rows) { ShowSightings(rows); }, .apart = true},
      {.caption = "Wh&y ...", .run = [this](const Rows& rows) { AskWhy(rows); }, .needs_rows = false},
      {.caption = "Open as we&b page",
       .run = [this](const Rows&) { OpenAsWebPage(); },
       .needs_rows = false,
       .apart = true},
  };
  for (ui::ListView::Command& command : commands) command.offered = context_.offered;
  return commands;
}

std::string CollectionMenu::AddressAt(const Rows& rows) const {
  const FoundAddresses& found = context_.job.found();
  return rows.empty() || rows.front() >= found.Count() ? "" : std::string(found.At(rows.front()).Address);
}

// An open reader keeps the collection from being deleted, so it is closed before the dialog comes up.
Result<std::vector<SightingRow>> CollectionMenu::SightingsOf(const std::string& address) const {
  const auto reader = context_.job.Reader();
  if (!reader.ok()) return reader.status();
  std::vector<SightingRow> sightings;
  const Status listed = reader.value()->SightingsOf(address, [&](const Sighting& row) {
    sightings.push_back({std::string(row.page), std::string(row.title), std::string(row.place), row.first_seen,
                         row.last_seen, row.gone});
    return true;
  });
  if (!listed.ok()) return listed;
  return sightings;
}

void CollectionMenu::ShowSightings(const Rows& rows) {
  const std::string address = AddressAt(rows);
  Result<std::vector<SightingRow>> sightings = SightingsOf(address);
  if (!sightings.ok()) return Warn(sightings.status());
  context_.sightings.ShowFor(address, sightings.take());
}

void CollectionMenu::AskWhy(const Rows& rows) {
  context_.why.ShowFor(AddressAt(rows), [this](const std::string& what) -> std::string {
    const auto reader = context_.job.Reader();
    if (!reader.ok()) return SentenceOf(reader.status());
    const Result<WhyAnswer> answer = Why(*reader.value(), context_.engine.platform.idna, what, kMostPlaces);
    if (!answer.ok()) return SentenceOf(answer.status());
    std::string text;
    for (const std::string& sentence : answer.value().sentences) text += (text.empty() ? "" : "\r\n") + sentence;
    return text;
  });
}

void CollectionMenu::OpenAsWebPage() {
  const Result<std::string> path = context_.job.WriteWebPage();
  if (!path.ok()) return Warn(path.status());
  if (!path.value().empty()) OpenWebPage(context_.engine.platform.shell, path.value());
}

BoxAnswer CollectionMenu::Show(const std::string& text, BoxButtons buttons) {
  return context_.engine.platform.boxes.Show(text, kProductCaption, BoxIcon::kExclamation, buttons);
}

}  // namespace quenlar
