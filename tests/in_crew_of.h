// Work in a crew of some size.
#pragma once

#include "support/work_crew.h"

namespace quillet::test {

// Nothing that uses the crew may be left when `work` returns.
template <typename Work>
void in_crew_of(int threads, const Work& work) {
  WORK_CREW().set_thread_count(threads);
  work();
  WORK_CREW().set_thread_count(1);
}

}  // namespace quillet::test
