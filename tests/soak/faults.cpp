#include "soak/faults.h"

namespace soak {

namespace {

void hold(testkit::Kernel& kernel, ModelPrinter& printer, Condition condition,
          std::int64_t lasts_ms) {
  printer.set(condition);
  kernel.at(kernel.now_ms() + lasts_ms, [&printer] { printer.set(Condition::none); });
}

void cut_power(testkit::Kernel& kernel, ModelPrinter& printer, std::int64_t lasts_ms) {
  printer.power_off();
  kernel.at(kernel.now_ms() + lasts_ms, [&printer] { printer.power_on(); });
}

void cut_connection(testkit::Kernel& kernel, ModelPrinter& printer, std::int64_t lasts_ms,
                    bool orderly) {
  printer.disconnect(orderly);
  kernel.at(kernel.now_ms() + lasts_ms, [&printer] { printer.connect(); });
}

/// What happens behind the byte.
void set_in(const Fault& fault, testkit::Kernel& kernel, ModelPrinter& printer) {
  switch (fault.kind) {
    case FaultKind::connection_lost:
    case FaultKind::connection_closed:
      return cut_connection(kernel, printer, fault.lasts_ms,
                            fault.kind == FaultKind::connection_closed);
    case FaultKind::cover_open:
      return hold(kernel, printer, Condition::cover_open, fault.lasts_ms);
    case FaultKind::paper_out:
      return hold(kernel, printer, Condition::paper_out, fault.lasts_ms);
    case FaultKind::jam:
      return hold(kernel, printer, Condition::jam, fault.lasts_ms);
    case FaultKind::power_off:
      return cut_power(kernel, printer, fault.lasts_ms);
    case FaultKind::restart:
      // Its end says so to a connection at once.
      cut_connection(kernel, printer, fault.lasts_ms, false);
      return cut_power(kernel, printer, fault.lasts_ms);
    case FaultKind::cover_then_power:
      hold(kernel, printer, Condition::cover_open, 2 * fault.lasts_ms);
      return kernel.at(kernel.now_ms() + fault.lasts_ms / 2,
                       [&kernel, &printer, fault] { cut_power(kernel, printer, fault.lasts_ms); });
    default:
      printer.set_busy(true);
      kernel.at(kernel.now_ms() + fault.lasts_ms, [&printer] { printer.set_busy(false); });
  }
}

}  // namespace

void start(const Fault& fault, testkit::Kernel& kernel, ModelPrinter& printer) {
  if (static_cast<std::size_t>(fault.kind) < kKindsWithPosition) {
    printer.when_received(fault.position,
                          [fault, &kernel, &printer] { set_in(fault, kernel, printer); });
    return;
  }
  if (fault.kind == FaultKind::known_before) {
    hold(kernel, printer, Condition::cover_open, fault.lasts_ms);
    // Until the monitor has seen it, or has not.
    return kernel.run_for(static_cast<std::int64_t>(fault.position) * 10);
  }
  printer.answers.late_ms = fault.kind == FaultKind::late ? fault.lasts_ms : 0;
  printer.answers.doubled = fault.kind == FaultKind::doubled;
  printer.answers.split = fault.kind == FaultKind::split;
  printer.answers.garbled = fault.kind == FaultKind::garbled;
  printer.answers.lost = fault.kind == FaultKind::mute;
  printer.slowness = fault.kind == FaultKind::slow ? 1 + fault.position % 4 : 0;
}

void end_faults(ModelPrinter& printer) {
  printer.forget_action();
  printer.answers = {};
  printer.slowness = 0;
}

Fault FaultPlan::next() {
  const std::size_t number = given_++;
  Fault fault;
  if (number < sweep()) {
    fault.kind = static_cast<FaultKind>(number / positions_);
    fault.position = number % positions_;
  } else {
    // Every other receipt meets no fault.
    if (below(2) != 0) fault.kind = static_cast<FaultKind>(below(kFaultKinds));
    fault.position = below(positions_);
  }
  fault.lasts_ms = duration_of(fault.kind);
  return fault;
}

std::int64_t FaultPlan::duration_of(FaultKind kind) {
  switch (kind) {
    case FaultKind::connection_lost:
    case FaultKind::connection_closed:
    case FaultKind::power_off:
    case FaultKind::restart:
    case FaultKind::cover_then_power:
      // A monitor that is at rest looks every half second; a printer takes longer to start.
      return 600 + static_cast<std::int64_t>(below(3400));
    default:
      return 10 + static_cast<std::int64_t>(below(5000));
  }
}

}  // namespace soak
