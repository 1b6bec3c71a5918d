// The prepared statements of an open collection.
#pragma once

#include "collection/collection.h"

namespace quenlar {

struct Collection::Statements {
  Statement fact, set_fact, begin_run, save_run;
  Statement add_start, start, starts, place_start, asked_start;
  Statement find_host, add_host, host, host_of_page, save_host_state, save_robots, host_has_read, hosts_waiting;
  Statement find_page, add_page, queue_page, deepen_page, next_page, readdress_page, end_page, page_unchanged,
      body_seen, queue_refused;
  Statement find_address, add_address, add_sighting, sightings_seen, sightings_gone;

  // Prepares all of them.
  [[nodiscard]] Status Prepare(Database& database);
};

}  // namespace quenlar
