// Page analysis takes no stack that grows with the page.
#include <gtest/gtest.h>
#include <pthread.h>

#include "support/random_pages.h"
#include "web/analysis_world.h"
#include "web/search_results.h"

namespace quenlar {
namespace {

constexpr std::size_t kStackBytes = 128 * 1024;

void* AnalyseAll(void*) {
  for (const std::string& page : HostilePages(1 << 18)) {
    AnalysisWorld world;
    Pump pump(world.loop);
    AnalysisContext context{world.run, world.project, world.settings, world, world, world.view, pump};
    ParsePage(context, page, "M1http://h/a/b");
    CollectResultLinks(page, world.project.queues[0]);
  }
  return nullptr;
}

TEST(SmallStack, HoldsTheAnalysisOfEveryHostilePage) {
  pthread_attr_t attributes;
  pthread_t thread;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStackBytes), 0);
  ASSERT_EQ(pthread_create(&thread, &attributes, AnalyseAll, nullptr), 0);
  EXPECT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

}  // namespace
}  // namespace quenlar
