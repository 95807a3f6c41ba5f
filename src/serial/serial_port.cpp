// Opening, configuring and closing a serial line.
#include "serial/serial_port.h"

#include <cstring>

#include "serial/serial_settings.h"

SerPort serPorts[TZV_PORTS] = {};

namespace {

speed_t line_speed(int baud) {
  switch (baud) {
    case 2400:
      return B2400;
    case 4800:
      return B4800;
    case 19200:
      return B19200;
    case 38400:
      return B38400;
    // Every other rate runs at 9600, the accepted 115200 among them: printers in the field are
    // set to 9600 behind applications that ask for 115200.
    default:
      return B9600;
  }
}

bool set_speed(termios& line, int baud) {
  if (baud == 0) return true;
  const speed_t speed = line_speed(baud);
  if (cfsetispeed(&line, speed) != 0 || cfsetospeed(&line, speed) != 0) return false;
  line.c_cflag |= CREAD | CLOCAL;
  return true;
}

void set_parity(termios& line, char parity) {
  if (parity == 'n') line.c_cflag &= ~static_cast<tcflag_t>(PARENB);
  if (parity == 'e' || parity == 'o') {
    line.c_cflag |= PARENB;
    line.c_iflag |= INPCK | ISTRIP;
  }
  if (parity == 'e') line.c_cflag &= ~static_cast<tcflag_t>(PARODD);
  if (parity == 'o') line.c_cflag |= PARODD;
}

void set_character(termios& line, char data_bits, char stop_bits) {
  if (data_bits == 7 || data_bits == 8) {
    line.c_cflag &= ~static_cast<tcflag_t>(CSIZE);
    line.c_cflag |= data_bits == 7 ? CS7 : CS8;
  }
  if (stop_bits == 1) line.c_cflag &= ~static_cast<tcflag_t>(CSTOPB);
  if (stop_bits == 2) line.c_cflag |= CSTOPB;
}

void set_flow_control(termios& line, char flow_control) {
  if (flow_control == 0) return;
  // Hardware flow control too is off in the driver: the printer signals on DSR, which drivers do
  // not watch, so the writes wait for it themselves.
  line.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS);
  line.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY);
}

void set_raw(termios& line) {
  line.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ECHOE | ISIG);
  line.c_oflag &= ~static_cast<tcflag_t>(OPOST);
}

/// 0, or -2 when the line does not take the settings. What it took is remembered in the entry.
long serConfigurePort(SerPort& entry, const SerPortSettings& settings) {
  termios line{};
  if (retry_interrupted([&] { return tcgetattr(entry.port, &line); }) != 0) return kRefused;
  if (!set_speed(line, settings.baud)) return kRefused;
  set_parity(line, settings.parity);
  set_character(line, settings.dataBits, settings.stopBits);
  set_flow_control(line, settings.flowControl);
  set_raw(line);
  if (retry_interrupted([&] { return tcflush(entry.port, TCIFLUSH); }) != 0) return kRefused;
  const auto apply = [&] { return tcsetattr(entry.port, TCSANOW, &line); };
  if (retry_interrupted(apply) != 0) return kRefused;
  entry.originalPortSettings = settings;
  return 0;
}

}  // namespace

bool has_handshake(PortHandle port) {
  return SerialPorts::copy(port).originalPortSettings.flowControl == 'h';
}

Opened SerialOpenPort(int entry, const char* portName, const char* portSettings) {
  SerPort opened = SerialPorts::named(portName);
  if (portSettings == nullptr || std::strlen(portSettings) >= sizeof opened.portSettings) {
    return {kNotAccepted};
  }
  const auto settings = parse_serial_settings(portSettings);
  if (!settings) return {kNotAccepted};
  std::memcpy(opened.portSettings, portSettings, std::strlen(portSettings));

  opened.port = open_device_file(portName, O_RDWR | O_NOCTTY | O_NONBLOCK);
  if (opened.port == -1) return {kFailed};
  const long configured = serConfigurePort(opened, *settings);
  if (configured != kOk) {
    close(opened.port);
    return {configured};
  }
  return {SerialPorts::store(entry, opened)};
}
