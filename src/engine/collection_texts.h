// What the text of the main window's box names among the collections, and the texts that the box offers for them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "platform/registry.h"
#include "project/project_list.h"
#include "state/settings.h"

namespace quenlar {

// A collection as a text names it.
struct NamedCollection {
  std::string name;                 // empty: the text names none
  std::vector<std::string> starts;  // of a run; empty for a collection that the text calls by its name: it goes on
  std::string language;             // of a keyword's search
  // The text is the collection's own name, and reads as a keyword too: "firma_de" is the collection of www.firma.de,
  // and that of the keyword "firma" in German. Where the start is none of the collection's starts, the text is the
  // name.
  bool may_be_name = false;
};

// A web address names the collection of its host, and a keyword the one of its words and language ("cars_de", or "cars"
// in the language of the settings). Where there is no such collection, a text may be the name of one that the command
// line has made.
[[nodiscard]] NamedCollection CollectionOfText(std::string_view text, const Settings& settings,
                                               const Installation& installation, const Files& files);

// The texts of the box while the window collects: those that were run, then the names of the collections that no text
// names, then the classic projects. Each is there once. Those that were run are stored beside the web settings, because
// a classic project list does not hold collections.
class CollectionTexts {
 public:
  // The references must outlive the object.
  CollectionTexts(Registry& registry, const Files& files, const Settings& settings, const Installation& installation,
                  const ProjectList& projects)
      : registry_(registry), files_(files), settings_(settings), installation_(installation), projects_(projects) {}

  // Reads what is stored.
  void Load();

  [[nodiscard]] std::vector<std::string> All() const;
  // Puts the text on top and stores it, unless it is there. A keyword gets the suffix of its language. Returns whether
  // All has changed.
  bool Add(std::string_view text);
  // Moves a text to the top, and stores nothing.
  void Pick(std::string_view text);
  // Removes the text, and others that name the same collection. They are stored by Store.
  void Remove(std::string_view text);
  void Store() const;

 private:
  [[nodiscard]] std::string NameOf(std::string_view text) const;

  Registry& registry_;
  const Files& files_;
  const Settings& settings_;
  const Installation& installation_;
  const ProjectList& projects_;
  std::vector<std::string> run_;  // the one that was run or picked last on top
  std::string picked_;            // last of all, where it is none of those that were run
};

}  // namespace quenlar
