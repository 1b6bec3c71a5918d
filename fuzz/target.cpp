#include "fuzz/target.h"

namespace quenlar::fuzz {

std::vector<Target>& Targets() {
  static std::vector<Target> targets;
  return targets;
}

}  // namespace quenlar::fuzz
