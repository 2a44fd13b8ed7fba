// Helper threads that share the work of a run. Jobs print nothing, call no library that is not for
// threads, end no run and throw nothing; what they meet they note, and who waits for them tells it.
// A job may start jobs, and waits for no others than those. So what a run reads, writes and says is
// the same with any number of threads.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace quillet {

class WorkCrew;

// One piece of work handed to the crew. What it works on outlives it: its destructor takes the work
// back, or waits when it is being done.
class CrewJob {
 public:
  CrewJob() = default;
  CrewJob(const CrewJob&) = delete;
  CrewJob& operator=(const CrewJob&) = delete;
  ~CrewJob() { take_back(); }

  // Hands the work to the crew, whose helpers do jobs in the order in which they come. Not while
  // another piece of work is under way.
  void start(std::function<void()> new_work) { hand_out(std::move(new_work), false); }

  // The same for a small piece that the caller soon does itself: helpers come to it when no other
  // job waits.
  void start_last(std::function<void()> new_work) { hand_out(std::move(new_work), true); }

  // Returns when the work is done. The caller takes part: it does this job when nobody has begun
  // it, and others while somebody does this one; while it waits for a small piece, small ones.
  void finish();

  void take_back();

  // Whether finish() would have to wait or to work.
  bool is_under_way() const;

 private:
  friend class WorkCrew;
  enum class State { idle, waiting, running, done };

  void hand_out(std::function<void()> new_work, bool comes_last);
  bool is_unfinished() const { return state == State::waiting || state == State::running; }

  std::function<void()> work;
  bool is_last = false;       // among those that wait
  State state = State::idle;  // guarded by the crew's mutex
};

class WorkCrew {
 public:
  WorkCrew() = default;
  WorkCrew(const WorkCrew&) = delete;
  WorkCrew& operator=(const WorkCrew&) = delete;
  ~WorkCrew();

  // How many threads work, the caller's included: 1 unless set. The others are started with the
  // first job. To be set while there is none.
  void set_thread_count(int count);
  int threads() const { return thread_count; }
  // False when all work is the caller's, and nothing is gained by handing it out early.
  bool has_helpers() const { return thread_count > 1; }

 private:
  friend class CrewJob;

  void add(CrewJob& job);
  void finish(CrewJob& job);
  void take_back(CrewJob& job);
  bool is_under_way(const CrewJob& job);
  void start_helpers();
  void dismiss_helpers();
  void help();
  CrewJob* first_waiting(bool only_last) const;
  void perform(CrewJob& job, std::unique_lock<std::mutex>& lock);

  int thread_count = 1;
  std::vector<std::thread> helpers;
  std::mutex mutex;
  std::condition_variable job_came;
  std::condition_variable job_done;
  std::deque<CrewJob*> waiting;  // those that come last behind all others
  bool stopping = false;
};

// The crew of the run.
WorkCrew& WORK_CREW();

// As many threads as this process may use at once, at most 8: disks and memory do not keep up with
// more.
int USUAL_THREAD_COUNT();

}  // namespace quillet
