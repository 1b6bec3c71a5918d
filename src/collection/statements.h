// The prepared statements of an open collection.
#pragma once

#include "collection/collection.h"

namespace quenlar {

struct Collection::Statements {
  Statement fact, set_fact, begin_run, save_run;
  Statement add_start, start, starts, place_start, asked_start;
  Statement find_host, add_host, host, hosts_of_site, save_host_state, save_robots, forget_robots, save_wait, waits,
      host_has_read, hosts_waiting, nearest_of, waiting_on;
  Statement find_page, page, add_page, queue_page, deepen_page, raise_page, make_private, lift_page, next_page,
      readdress_page, end_page, end_unread, forget_body, page_unchanged, body_seen, queue_refused, queue_refused_of;
  Statement save_links, links;
  Statement add_archived_page, add_archived_sighting;
  Statement find_address, add_address, seen_earlier, add_sighting, sightings_seen, sightings_gone;

  // Prepares all of them.
  [[nodiscard]] Status Prepare(Database& database);
};

}  // namespace quenlar
