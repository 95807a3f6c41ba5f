// Serves the page to browsers. Its threads touch nothing of the printer: they read the board, and
// ask the printer's loop over the queue.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "board.h"
#include "request_queue.h"

namespace httplib {
class Server;
struct Request;
struct Response;
}  // namespace httplib

namespace virtual_printer {

struct PageAddress {
  std::string host = "127.0.0.1";
  int port = 0;  // any that is free
};

class PageServer {
 public:
  // The address is taken; throws std::runtime_error when it cannot be had.
  PageServer(Board& board, RequestQueue& requests, PageAddress address);
  PageServer(const PageServer&) = delete;
  PageServer& operator=(const PageServer&) = delete;

  // Closes the board and the queue, so that nobody waits for them any more.
  ~PageServer();

  // From now on browsers are answered.
  void serve();

  std::string url() const;

  // As many browsers may watch at the same time.
  static constexpr int kMostWatchers = 24;

 private:
  void set_up();
  void offer_files();
  void watch(httplib::Response& response);
  void change(const httplib::Request& request, httplib::Response& response);

  Board& board_;
  RequestQueue& requests_;
  PageAddress address_;
  std::unique_ptr<httplib::Server> server_;
  std::atomic<int> watchers_ = 0;
  std::thread thread_;
};

}  // namespace virtual_printer
