// Talks to a page as a browser does, or as somebody who should not.
#pragma once

#include <httplib.h>

#include <chrono>
#include <functional>
#include <string>

namespace virtual_printer {

class HttpCaller {
 public:
  explicit HttpCaller(std::string url) : origin_(std::move(url)), client_(origin_) {
    client_.set_read_timeout(std::chrono::seconds(30));
  }

  httplib::Result get(const std::string& path, const httplib::Headers& headers = {}) {
    return client_.Get(path, headers);
  }

  // As the page's own buttons do.
  httplib::Result ask(const std::string& request) { return ask(request, {{"Origin", origin_}}); }
  httplib::Result ask(const std::string& request, const httplib::Headers& headers) {
    return client_.Post("/control", headers, request, "text/plain");
  }

  // Reads events until one has come that is looked for; all that came.
  std::string events_until(const std::function<bool(const std::string&)>& is_enough) {
    std::string events;
    client_.Get("/events", [&](const char* bytes, std::size_t length) {
      events.append(bytes, length);
      return !is_enough(events);
    });
    return events;
  }
  std::string events_until(const std::string& part) {
    return events_until(
        [&](const std::string& events) { return events.find(part) != std::string::npos; });
  }

  const std::string& origin() const { return origin_; }

 private:
  std::string origin_;
  httplib::Client client_;
};

}  // namespace virtual_printer
