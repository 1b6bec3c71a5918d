// The main window with projects that were saved before.
#pragma once

#include <string>
#include <vector>

#include "project/data_file.h"
#include "support/program_world.h"

namespace quenlar {

class SavedProjectsTest : public ProgramTest {
 protected:
  void StartWith(const std::vector<std::string>& projects) {
    StoreProjects(projects);
    Start();
  }
  void PutFiles(const std::string& name) {
    files.AddFolder("/home/data");
    files.AddFolder("/home/report");
    files.Put("/home/data/" + name + ".dat", HeaderLine() + "\r\n");
    files.Put("/home/report/" + name + ".rpt", name + "@kept.test\r\n");
  }
  void Delete(BoxAnswer answer = BoxAnswer::kYes) {
    boxes.answers = {answer};
    extract.cmdDelete.Click();
  }
  [[nodiscard]] const std::vector<std::string>& Entries() const { return program.engine.project_list.entries(); }
};

}  // namespace quenlar
