// A line from a device that a program has by the preload library: no name in /dev, no hardware and
// no rights are needed.
#pragma once

#include <optional>

#include "device_page.h"
#include "stream_link.h"

namespace virtual_printer {

// A folder of this user's own that goes with the object, and all that is in it.
class PrivateFolder {
 public:
  PrivateFolder();
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;
  ~PrivateFolder();

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

class DeviceLink : public StreamLink {
 public:
  // At a socket of that path, where a printer that is started again finds its device again; without
  // one, at a socket that goes with the object.
  explicit DeviceLink(std::string name, std::string socket = {});
  ~DeviceLink() override;

  std::string name() const override { return name_; }
  std::string settings() const override;
  Environment environment() const override;
  void show(const Conditions& conditions) override;
  void limit_room(std::size_t bytes) override;
  void refuse_nibble_mode(int times) override;

 private:
  Descriptor listen_anew() override;
  void stop_listening() override;
  bool is_gone(const Conditions& conditions) const;
  void show_busy(bool busy);

  std::string name_;
  tzvio_devices::DeviceKind kind_;
  std::optional<PrivateFolder> folder_;
  std::string socket_;
  tzvio_devices::DevicePage* page_ = nullptr;
  bool busy_ = false;
};

}  // namespace virtual_printer
