// A crawl case: one text file that says what the web holds, what the user does, and what comes of it.
//
//   == page http://www.example.com
//   <a href="x.html">x</a> me@example.com
//   == open example.com
//   == run
//   == expect addresses
//   me@example.com | http://www.example.com |
//
// Each "== command arguments" is carried out in its turn, with the lines below it as its text. What can be said:
//
//   about                        for readers
//   settings                     "Name value" lines, by the names of the variables
//   filter                       "remove WORD" and "extract WORD" lines; switches the filters on
//   file PATH                    puts a file there
//   page URL [after SECONDS] [by URL ...]   serves a page, late, or behind redirects
//   fail URL                     serves a failure
//   open TEXT                    what typing TEXT into the input box does
//   at SECONDS stop|off line|on line        prepared before a run
//   run                          the Extract button, until the run has ended
//   upgrade check                the watchdog's first tick
//   expect requests|addresses|panel1|panel2|panel3|queues|messages|calls      exactly these lines
//   expect file PATH             exactly these lines, each with "$" behind it (for the blanks at its end); no line: no
//                                such file. (Elsewhere a "$" is needed only behind a blank at the end.)
#pragma once

#include <string>
#include <vector>

namespace quenlar {

struct CrawlStep {
  int line = 0;
  std::string command;  // without "== "
  std::vector<std::string> lines;
};

[[nodiscard]] std::vector<CrawlStep> ReadCrawlCase(const std::string& text);

}  // namespace quenlar
