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
  bool stopped;  ///< told to end, beside `StopIt`, which tells all monitors of a transport
  bool ended;    ///< the thread has taken its last look at anything shared
};

/// Every monitor that is not joined yet. The lock also makes "told to end" and "still running"
/// one decision: a claim never counts on a monitor that is about to end.
pthread_mutex_t monitors_mutex = PTHREAD_MUTEX_INITIALIZER;
RunningMonitor* monitors = nullptr;

/// Calls back for each monitor of this process that goes on. Called with the lock.
template <typename Action>
void for_each_live(const Transport& transport, Action action) {
  for (RunningMonitor* running = monitors; running != nullptr; running = running->next) {
    const bool ours = running->process == getpid() && &running->monitor.transport() == &transport;
    if (ours && !running->ended && !running->stopped) action(*running);
  }
}

/// `StopIt` says whether any monitor runs: one that ends alone leaves it to the others. Called
/// with the lock.
void clear_StopIt_after_the_last(const Transport& transport) {
  bool others = false;
  for_each_live(transport, [&](const RunningMonitor&) { others = true; });
  if (!others) transport.state.StopIt = 0;
}

bool told_to_end(RunningMonitor& running) {
  const MutexLock lock(monitors_mutex);
  running.ended = running.stopped || running.monitor.transport().state.StopIt == 0;
  return running.ended;
}

/// A monitor that has lost its link.
void end_alone(RunningMonitor& running) {
  const MutexLock lock(monitors_mutex);
  running.ended = true;
  clear_StopIt_after_the_last(running.monitor.transport());
}

void* monitor_thread(void* argument) {
  auto& running = *static_cast<RunningMonitor*>(argument);
  while (!told_to_end(running)) {
    if (!running.monitor.cycle()) {
      end_alone(running);
      break;
    }
  }
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

/// The monitor that serves the port, or null; it may be told to end already. Called with the lock.
RunningMonitor* find_running(const Transport& transport, const char* portName) {
  for (RunningMonitor* running = monitors; running != nullptr; running = running->next) {
    if (running->process == getpid() && !running->ended &&
        running->monitor.serves(transport, portName)) {
      return running;
    }
  }
  return nullptr;
}

/// Whether a monitor serves the port; one that was told to end goes on. Called with the lock.
bool keep_monitor(const Transport& transport, const char* portName) {
  RunningMonitor* const running = find_running(transport, portName);
  if (running != nullptr) running->stopped = false;
  return running != nullptr;
}

/// Called with the lock; false when the system has no thread to give.
bool create_monitor(const Transport& transport, const char* portName) {
  const TransportState& state = transport.state;
  pthread_attr_init(&state.attr);
  pthread_attr_setdetachstate(&state.attr, PTHREAD_CREATE_JOINABLE);
  void* const memory = std::malloc(sizeof(RunningMonitor));
  if (memory == nullptr) return false;
  auto* const running = new (memory)
      RunningMonitor{Monitor(transport, portName), monitors, getpid(), {}, false, false};
  if (pthread_create(&running->thread, &state.attr, monitor_thread, running) != 0) {
    std::free(running);
    return false;
  }
  state.thread = running->thread;
  monitors = running;
  return true;
}

/// The attributes lie in exported variables: zero, they are as before any claim. Called with the
/// lock.
void destroy_attributes(const TransportState& state) {
  pthread_attr_destroy(&state.attr);
  std::memset(&state.attr, 0, sizeof state.attr);
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

bool start_monitor(const Transport& transport, const char* portName) {
  const MutexLock lock(monitors_mutex);
  const TransportState& state = transport.state;
  state.StopIt = 1;
  // Has the monitor enable the printer's reports in its next cycle.
  state.bOffline = 1;
  settle_exchanges(state);
  join_ended();
  return keep_monitor(transport, portName) || create_monitor(transport, portName);
}

void stop_monitor(const Transport& transport, const char* portName) {
  const MutexLock lock(monitors_mutex);
  for_each_live(transport, [&](RunningMonitor& running) {
    running.stopped = running.monitor.serves(transport, portName);
  });
  clear_StopIt_after_the_last(transport);
  destroy_attributes(transport.state);
}

void run_monitor(const Transport& transport, const char* portName) {
  {
    const MutexLock lock(monitors_mutex);
    if (find_running(transport, portName) != nullptr) return;
  }
  Monitor monitor(transport, portName);
  while (transport.state.StopIt != 0) {
    if (monitor.cycle()) continue;
    const MutexLock lock(monitors_mutex);
    clear_StopIt_after_the_last(transport);
    return;
  }
}

long claim_device(const Transport& transport, const char* portName, long /*TimeoutMillis*/) {
  if (!transport.registry.find(portName)) return kFailed;
  // A till that cannot watch its printer must not go on as if it could.
  if (!start_monitor(transport, portName)) std::exit(-1);
  return kOk;
}

long release_device(const Transport& transport, const char* portName) {
  const PortHandle port = transport.registry.find(portName);
  if (!port) return kFailed;
  {
    const MutexLock lock(monitors_mutex);
    transport.state.StopIt = 0;
    destroy_attributes(transport.state);
  }
  const auto& [wake_up, milliseconds] = transport.release;
  if (!wake_up.empty()) transport.write_now(port, wake_up);
  pause_ms(milliseconds);
  return kOk;
}

void end_all_monitors() {
  while (RunningMonitor* const running = end_all_and_take_one()) join_and_free(running);
}
