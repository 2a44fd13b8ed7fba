#include "support/work_crew.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace quillet {

void CrewJob::hand_out(std::function<void()> new_work, bool comes_last) {
  work = std::move(new_work);
  is_last = comes_last;
  WORK_CREW().add(*this);
}

void CrewJob::finish() {
  WORK_CREW().finish(*this);
}

void CrewJob::take_back() {
  WORK_CREW().take_back(*this);
}

bool CrewJob::is_under_way() const {
  return WORK_CREW().is_under_way(*this);
}

WorkCrew::~WorkCrew() {
  dismiss_helpers();
}

void WorkCrew::set_thread_count(int count) {
  dismiss_helpers();
  thread_count = count;
}

void WorkCrew::dismiss_helpers() {
  {
    const std::lock_guard lock(mutex);
    stopping = true;
  }
  job_came.notify_all();
  for (std::thread& helper : helpers) helper.join();
  helpers.clear();
  stopping = false;
}

void WorkCrew::add(CrewJob& job) {
  start_helpers();
  {
    const std::lock_guard lock(mutex);
    job.state = CrewJob::State::waiting;
    const auto place =
        job.is_last ? waiting.end() : std::ranges::find(waiting, true, &CrewJob::is_last);
    waiting.insert(place, &job);
  }
  job_came.notify_one();
}

// A system that gives no more threads is served by those that there are.
void WorkCrew::start_helpers() {
  if (!helpers.empty()) return;
  try {
    while (std::ssize(helpers) < thread_count - 1) helpers.emplace_back([this] { help(); });
  } catch (const std::system_error&) {
    thread_count = static_cast<int>(helpers.size()) + 1;
  }
}

void WorkCrew::help() {
  std::unique_lock lock(mutex);
  for (;;) {
    job_came.wait(lock, [&] { return stopping || !waiting.empty(); });
    if (stopping) return;
    perform(*waiting.front(), lock);
  }
}

CrewJob* WorkCrew::first_waiting(bool only_last) const {
  const auto job =
      only_last ? std::ranges::find(waiting, true, &CrewJob::is_last) : waiting.begin();
  return job == waiting.end() ? nullptr : *job;
}

void WorkCrew::perform(CrewJob& job, std::unique_lock<std::mutex>& lock) {
  std::erase(waiting, &job);
  job.state = CrewJob::State::running;
  lock.unlock();
  job.work();
  lock.lock();
  job.state = CrewJob::State::done;
  job_done.notify_all();
}

void WorkCrew::finish(CrewJob& job) {
  std::unique_lock lock(mutex);
  while (job.is_unfinished()) {
    CrewJob* const next = job.state == CrewJob::State::waiting ? &job : first_waiting(job.is_last);
    if (next != nullptr) {
      perform(*next, lock);
    } else {
      job_done.wait(lock);
    }
  }
  job.state = CrewJob::State::idle;
}

void WorkCrew::take_back(CrewJob& job) {
  std::unique_lock lock(mutex);
  if (job.state == CrewJob::State::waiting) std::erase(waiting, &job);
  job_done.wait(lock, [&] { return job.state != CrewJob::State::running; });
  job.state = CrewJob::State::idle;
}

bool WorkCrew::is_under_way(const CrewJob& job) {
  const std::lock_guard lock(mutex);
  return job.is_unfinished();
}

WorkCrew& WORK_CREW() {
  static WorkCrew crew;
  return crew;
}

int USUAL_THREAD_COUNT() {
  constexpr int most = 8;
  return std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, most);
}

}  // namespace quillet
