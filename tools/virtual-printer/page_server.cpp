#include "page_server.h"

#include <httplib.h>

#include <chrono>
#include <stdexcept>
#include <utility>

#include "page_access.h"
#include "page_files.h"

namespace virtual_printer {
namespace {

using httplib::Request;
using httplib::Response;
using HandlerResponse = httplib::Server::HandlerResponse;

constexpr const char* kWords = "text/plain; charset=utf-8";
constexpr const char* kControlPath = "/control";

// Browsers open several connections; each watcher keeps one.
constexpr std::size_t kThreads = PageServer::kMostWatchers + 8;

// More than any request is long.
constexpr std::size_t kLongestRequest = 256;

// Whoever does not read or write meanwhile is given up.
constexpr std::chrono::seconds kPatience{2};

// A watcher that is gone is noticed by writing to it.
constexpr std::chrono::seconds kSilence{5};

// Faster than that, nobody can see.
constexpr std::chrono::milliseconds kFrame{40};

enum Answer {
  kBadRequest = 400,
  kForbidden = 403,
  kNotFound = 404,
  kWrongMethod = 405,
  kUnavailable = 503
};

// A foreign page can neither run a script in this one, nor show it in itself, nor read from it.
httplib::Headers guarding_headers() {
  return {{"Content-Security-Policy",
           "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
           "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
          {"X-Content-Type-Options", "nosniff"},
          {"X-Frame-Options", "DENY"},
          {"Referrer-Policy", "no-referrer"},
          {"Cross-Origin-Resource-Policy", "same-origin"},
          {"Cache-Control", "no-store"}};
}

void refuse(Response& response, Answer status, const std::string& words) {
  response.status = status;
  response.set_content(words + '\n', kWords);
}

HandlerResponse guard(const Request& request, Response& response) {
  const std::string host = request.get_header_value("Host");
  const bool changes = request.path == kControlPath;
  if (!is_own_host(host)) {
    refuse(response, kForbidden, "this page is served by its address only");
  } else if (request.method != (changes ? "POST" : "GET")) {
    response.set_header("Allow", changes ? "POST" : "GET");
    refuse(response, kWrongMethod, "wrong method");
  } else if (changes && !is_own_page(request.get_header_value("Origin"), host)) {
    refuse(response, kForbidden, "only this page's own buttons change the printer");
  } else {
    return HandlerResponse::Unhandled;
  }
  return HandlerResponse::Handled;
}

// Another server at the same port is an error, not somebody to share it with.
void take_port_alone(int socket) {
  const int on = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}

void send_png(const std::optional<std::string>& png, Response& response) {
  if (png) {
    response.set_content(*png, "image/png");
  } else {
    refuse(response, kNotFound, "no such paper");
  }
}

std::size_t number_in(const Request& request, std::size_t group) {
  return std::stoul(request.matches[group].str());
}

}  // namespace

PageServer::PageServer(Board& board, RequestQueue& requests, PageAddress address)
    : board_(board),
      requests_(requests),
      address_(std::move(address)),
      server_(std::make_unique<httplib::Server>()) {
  set_up();
  offer_files();
  if (address_.port == 0) {
    address_.port = server_->bind_to_any_port(address_.host);
  } else if (!server_->bind_to_port(address_.host, address_.port)) {
    throw std::runtime_error("cannot serve the page at " + url());
  }
  if (address_.port < 0) throw std::runtime_error("cannot serve the page at " + address_.host);
}

PageServer::~PageServer() {
  board_.close();
  requests_.close();
  if (!thread_.joinable()) return;
  server_->stop();
  thread_.join();
}

// A server can only be stopped once it runs.
void PageServer::serve() {
  thread_ = std::thread([this] { server_->listen_after_bind(); });
  while (!server_->is_running()) std::this_thread::yield();
}

std::string PageServer::url() const {
  const bool has_colons = address_.host.find(':') != std::string::npos;
  return "http://" + (has_colons ? '[' + address_.host + ']' : address_.host) + ':' +
         std::to_string(address_.port) + '/';
}

void PageServer::set_up() {
  server_->new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
  server_->set_socket_options(take_port_alone);
  server_->set_keep_alive_max_count(1);  // an idle connection would keep a thread
  server_->set_read_timeout(kPatience);
  server_->set_write_timeout(kPatience);
  server_->set_payload_max_length(kLongestRequest);
  server_->set_default_headers(guarding_headers());
  server_->set_pre_routing_handler(guard);
}

void PageServer::offer_files() {
  for (const PageFile& file : kPageFiles) {
    server_->Get(file.path, [&file](const Request&, Response& response) {
      response.set_content(file.content.data(), file.content.size(), file.type);
    });
  }
  server_->Get("/events", [this](const Request&, Response& response) { watch(response); });
  server_->Get(R"(/paper/(\d{1,9})/(\d{1,9})\.png)", [this](const Request& request, Response& to) {
    send_png(board_.tile(number_in(request, 1), number_in(request, 2)), to);
  });
  server_->Get(R"(/receipts/(\d{1,9})\.png)", [this](const Request& request, Response& response) {
    send_png(board_.picture(number_in(request, 1)), response);
  });
  server_->Post(kControlPath,
                [this](const Request& request, Response& response) { change(request, response); });
}

void PageServer::watch(Response& response) {
  if (++watchers_ > kMostWatchers) {
    --watchers_;
    return refuse(response, kUnavailable, "too many watch the printer already");
  }
  auto seen = std::make_shared<Board::Version>(Board::kNothing);
  response.set_chunked_content_provider(
      "text/event-stream",
      [this, seen](std::size_t /*offset*/, httplib::DataSink& sink) {
        const auto news = board_.news_since(*seen, kSilence);
        if (!news) return false;
        *seen = news->version;
        const std::string event =
            news->json.empty() ? ":\n\n" : "retry: 500\ndata: " + news->json + "\n\n";
        if (!sink.write(event.data(), event.size())) return false;
        board_.pause(kFrame);
        return true;
      },
      [this](bool /*success*/) { --watchers_; });
}

void PageServer::change(const Request& request, Response& response) {
  const auto reply = requests_.ask(request.body);
  if (!reply) return refuse(response, kUnavailable, "the printer has ended");
  if (!reply->done) return refuse(response, kBadRequest, reply->text);
  response.set_content(reply->text, kWords);
}

}  // namespace virtual_printer
