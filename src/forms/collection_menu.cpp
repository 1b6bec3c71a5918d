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
      {.caption = "&Never list this address again ...", .run = [this](const Rows& rows) { NeverListAgain(rows); }},
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
  context_.sightings.Fill(address, sightings.take());
  context_.show(context_.sightings);
}

// The question and the answer pump; the addresses are copied, since the table may change meanwhile.
void CollectionMenu::NeverListAgain(const Rows& rows) {
  std::vector<std::string> addresses;
  const FoundAddresses& found = context_.job.found();
  for (const std::uint32_t row : rows) {
    if (row < found.Count()) addresses.emplace_back(found.At(row).Address);
  }
  if (addresses.empty()) return;
  if (const Status idle = context_.never.CheckIdle(); !idle.ok()) return Warn(idle);
  const bool one = addresses.size() == 1;
  const std::string what = one ? addresses.front() : "These " + std::to_string(addresses.size()) + " addresses";
  const BoxAnswer answer = Show(what + (one ? " is" : " are") +
                                    " taken out of all collections and reports, and never listed again.\r\n"
                                    "Only a digest is kept, by which the program knows " +
                                    (one ? "it" : "them") + " again.\r\n\r\nDo you want that ?",
                                BoxButtons::kYesNo);
  if (answer != BoxAnswer::kYes) return;
  const auto done = context_.never.AddDigests(addresses);
  if (!done.ok()) return Warn(done.status());
  std::string text;
  for (const std::string& sentence : done.value()) text += (text.empty() ? "" : "\r\n") + sentence + ".";
  Show(text, BoxButtons::kOk, BoxIcon::kInformation);
}

void CollectionMenu::AskWhy(const Rows& rows) {
  context_.why.Fill(AddressAt(rows), [this](const std::string& what) -> std::string {
    const auto reader = context_.job.Reader();
    if (!reader.ok()) return SentenceOf(reader.status());
    const Result<WhyAnswer> answer =
        Why(*reader.value(), context_.engine.suppression, context_.engine.platform.idna, what, kMostPlaces);
    if (!answer.ok()) return SentenceOf(answer.status());
    std::string text;
    for (const std::string& sentence : answer.value().sentences) text += (text.empty() ? "" : "\r\n") + sentence;
    return text;
  });
  context_.show(context_.why);
}

void CollectionMenu::OpenAsWebPage() {
  const Result<std::string> path = context_.job.WriteWebPage();
  if (!path.ok()) return Warn(path.status());
  if (!path.value().empty()) OpenFileInBrowser(context_.engine.platform.shell, path.value());
}

BoxAnswer CollectionMenu::Show(const std::string& text, BoxButtons buttons, BoxIcon icon) {
  return context_.engine.platform.boxes.Show(text, kProductCaption, icon, buttons);
}

}  // namespace quenlar
