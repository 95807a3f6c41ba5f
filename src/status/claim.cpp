#include "status/claim.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "dispatch/lock.h"
#include "dispatch/system.h"
#include "status/exchange.h"
#include "status/monitor.h"

namespace {

/// A monitor and its thread, from its claim until somebody has joined the thread.
struct RunningMonitor {
  Monitor monitor;
  RunningMonitor* next;
  pid_t process;
  pthread_t thread;
  bool ended;  ///< the thread has taken its last look at anything shared
};

/// Every monitor that is not joined yet. The lock also makes "told to end" and "still running"
/// one decision: a claim never counts on a monitor that is about to end.
pthread_mutex_t monitors_mutex = PTHREAD_MUTEX_INITIALIZER;
RunningMonitor* monitors = nullptr;

bool told_to_end(RunningMonitor& running) {
  const MutexLock lock(monitors_mutex);
  running.ended = running.monitor.transport().state.StopIt == 0;
  return running.ended;
}

void* monitor_thread(void* argument) {
  auto& running = *static_cast<RunningMonitor*>(argument);
  while (!told_to_end(running)) running.monitor.cycle();
  return nullptr;
}

/// Waits for the thread's last instruction and frees the record. A forked child has its parent's
/// records, but not the threads.
void join_and_free(RunningMonitor* running) {
  if (running->process == getpid()) pthread_join(running->thread, nullptr);
  std::free(running);
}

/// Joins those that have ended, or their stacks would pile up with each claim. Called with the
/// lock.
void join_ended() {
  for (RunningMonitor** link = &monitors; *link != nullptr;) {
    RunningMonitor* const running = *link;
    if (running->ended) {
      *link = running->next;
      join_and_free(running);
    } else {
      link = &running->next;
    }
  }
}

/// Whether a monitor of this process serves the port. Called with the lock.
bool is_monitored(const Transport& transport, const char* portName) {
  for (const RunningMonitor* running = monitors; running != nullptr; running = running->next) {
    if (running->process == getpid() && !running->ended &&
        running->monitor.serves(transport, portName)) {
      return true;
    }
  }
  return false;
}

/// Called with the lock; false when the system has no thread to give.
bool start_monitor(const Transport& transport, const char* portName) {
  const TransportState& state = transport.state;
  pthread_attr_init(&state.attr);
  pthread_attr_setdetachstate(&state.attr, PTHREAD_CREATE_JOINABLE);
  void* const memory = std::malloc(sizeof(RunningMonitor));
  if (memory == nullptr) return false;
  auto* const running =
      new (memory) RunningMonitor{Monitor(transport, portName), monitors, getpid(), {}, false};
  if (pthread_create(&running->thread, &state.attr, monitor_thread, running) != 0) {
    std::free(running);
    return false;
  }
  state.thread = running->thread;
  monitors = running;
  return true;
}

bool claim(const Transport& transport, const char* portName) {
  const MutexLock lock(monitors_mutex);
  const TransportState& state = transport.state;
  state.StopIt = 1;
  // Has the monitor enable the printer's reports in its next cycle.
  state.bOffline = 1;
  settle_exchanges(state);
  join_ended();
  return is_monitored(transport, portName) || start_monitor(transport, portName);
}

/// Tells all monitors to end, so that they do so side by side, and takes one off the list.
RunningMonitor* end_all_and_take_one() {
  const MutexLock lock(monitors_mutex);
  for (const RunningMonitor* running = monitors; running != nullptr; running = running->next) {
    running->monitor.transport().state.StopIt = 0;
  }
  RunningMonitor* const first = monitors;
  if (first != nullptr) monitors = first->next;
  return first;
}

}  // namespace

long claim_device(const Transport& transport, const char* portName, long /*TimeoutMillis*/) {
  if (!transport.registry.find(portName)) return kFailed;
  // A till that cannot watch its printer must not go on as if it could.
  if (!claim(transport, portName)) std::exit(-1);
  return kOk;
}

long release_device(const Transport& transport, const char* portName) {
  if (!transport.registry.find(portName)) return kFailed;
  {
    const MutexLock lock(monitors_mutex);
    transport.state.StopIt = 0;
    pthread_attr_destroy(&transport.state.attr);
    std::memset(&transport.state.attr, 0, sizeof transport.state.attr);
  }
  pause_ms(transport.release_pause_ms);
  return kOk;
}

void end_all_monitors() {
  while (RunningMonitor* const running = end_all_and_take_one()) join_and_free(running);
}
