#include "collection/statements.h"

#include "collection/collection_sql.h"

namespace quenlar {

Status Collection::Statements::Prepare(Database& database) {
  const struct {
    Statement& statement;
    const char* text;
  } all[] = {
      {fact, sql::kFact},
      {set_fact, sql::kSetFact},
      {begin_run, sql::kBeginRun},
      {save_run, sql::kSaveRun},
      {add_start, sql::kAddStart},
      {start, sql::kStart},
      {starts, sql::kStarts},
      {place_start, sql::kPlaceStart},
      {asked_start, sql::kAskedStart},
      {find_host, sql::kFindHost},
      {add_host, sql::kAddHost},
      {host, sql::kHost},
      {hosts_of_site, sql::kHostsOfSite},
      {save_host_state, sql::kSaveHostState},
      {save_robots, sql::kSaveRobots},
      {forget_robots, sql::kForgetRobots},
      {save_wait, sql::kSaveWait},
      {waits, sql::kWaits},
      {host_has_read, sql::kHostHasRead},
      {hosts_waiting, sql::kHostsWaiting},
      {nearest_of, sql::kNearestOf},
      {waiting_on, sql::kWaitingOn},
      {find_page, sql::kFindPage},
      {page, sql::kPage},
      {add_page, sql::kAddPage},
      {queue_page, sql::kQueuePage},
      {deepen_page, sql::kDeepenPage},
      {raise_page, sql::kRaisePage},
      {make_private, sql::kMakePrivate},
      {lift_page, sql::kLiftPage},
      {next_page, sql::kNextPage},
      {readdress_page, sql::kReaddressPage},
      {end_page, sql::kEndPage},
      {end_unread, sql::kEndUnread},
      {forget_body, sql::kForgetBody},
      {page_unchanged, sql::kPageUnchanged},
      {body_seen, sql::kBodySeen},
      {queue_refused, sql::kQueueRefused},
      {queue_refused_of, sql::kQueueRefusedOf},
      {save_links, sql::kSaveLinks},
      {links, sql::kLinks},
      {add_archived_page, sql::kAddArchivedPage},
      {add_archived_sighting, sql::kAddArchivedSighting},
      {find_address, sql::kFindAddress},
      {add_address, sql::kAddAddress},
      {seen_earlier, sql::kSeenEarlier},
      {add_sighting, sql::kAddSighting},
      {sightings_seen, sql::kSightingsSeen},
      {sightings_gone, sql::kSightingsGone},
  };
  for (const auto& [statement, text] : all) {
    Result<Statement> made = database.Prepare(text);
    if (!made.ok()) return made.status();
    statement = made.take();
  }
  return Status::Ok();
}

}  // namespace quenlar
