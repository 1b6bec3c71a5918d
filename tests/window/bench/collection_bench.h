// Measures the window with a large collection.
#pragma once

namespace quenlar::window_test {

// Prints a table: how long a collection of 100,000 addresses and 1,000,000 sightings takes to be opened, scrolled
// through, sorted and asked, and its memory.
void MeasureCollection();

}  // namespace quenlar::window_test
