// The page's server with a board of the test's own, and nobody's printer behind it.
#include "page_server.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "conditions.h"
#include "http_caller.h"
#include "line_faults.h"
#include "page_access.h"

namespace virtual_printer {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// The printer's loop, as far as the page sees it.
class PageServerTest : public testing::Test {
 protected:
  PageServerTest() {
    server_.serve();
    loop_ = std::thread([this] {
      while (!ended_)
        requests_.serve([this](const std::string& request) { return answer(request); });
    });
  }

  ~PageServerTest() override {
    ended_ = true;
    loop_.join();
  }

  std::string origin() const { return server_.url().substr(0, server_.url().size() - 1); }

  Board board_;
  RequestQueue requests_;
  PageServer server_{board_, requests_, {}};
  HttpCaller caller_{origin()};
  std::vector<std::string> asked_;

 private:
  ControlReply answer(const std::string& request) {
    asked_.push_back(request);
    return {request != "set this on", "heard"};
  }

  std::atomic<bool> ended_ = false;
  std::thread loop_;
};

TEST_F(PageServerTest, serves_the_page_and_what_belongs_to_it) {
  const auto page = caller_.get("/");
  ASSERT_TRUE(page);
  EXPECT_EQ(page->status, 200);
  EXPECT_EQ(page->get_header_value("Content-Type"), "text/html; charset=utf-8");
  EXPECT_THAT(page->get_header_value("Content-Security-Policy"),
              AllOf(StartsWith("default-src 'none'"), Not(HasSubstr("unsafe"))));
  EXPECT_EQ(page->get_header_value("X-Content-Type-Options"), "nosniff");
  EXPECT_THAT(page->body, AllOf(StartsWith("<!DOCTYPE html>"), HasSubstr("</html>")));
  EXPECT_EQ(caller_.get("/page.css")->get_header_value("Content-Type"), "text/css; charset=utf-8");
  EXPECT_EQ(caller_.get("/page.js")->get_header_value("Content-Type"),
            "text/javascript; charset=utf-8");
  EXPECT_EQ(caller_.get("/elsewhere")->status, 404);
}

TEST_F(PageServerTest, page_has_a_button_for_all_that_can_be_set) {
  const std::string page = caller_.get("/")->body;
  for (const Condition condition : kAllConditions) {
    EXPECT_THAT(page, HasSubstr("data-name=\"" + std::string(name_of(condition)) + '"'));
  }
  for (const LineSetting& setting : kLineSettings) {
    EXPECT_THAT(page, HasSubstr("data-name=\"" + std::string(setting.name) + '"'));
  }
}

TEST_F(PageServerTest, buttons_ask_the_loop) {
  EXPECT_EQ(caller_.ask("set cover on")->status, 200);
  EXPECT_EQ(caller_.ask("set this on")->status, 400);
  EXPECT_THAT(asked_, testing::ElementsAre("set cover on", "set this on"));
}

TEST_F(PageServerTest, nobody_else_may_press_them) {
  EXPECT_EQ(caller_.ask("set cover on", {})->status, 403);
  EXPECT_EQ(caller_.ask("set cover on", {{"Origin", "http://shop.example"}})->status, 403);
  EXPECT_EQ(caller_.ask("set cover on", {{"Origin", "null"}})->status, 403);
  EXPECT_EQ(caller_.ask("set cover on", {{"Origin", origin() + "0"}})->status, 403);
  EXPECT_EQ(caller_.get("/control")->status, 405);
  httplib::Client other(origin());
  EXPECT_EQ(other.Put("/control", "set cover on", "text/plain")->status, 405);
  EXPECT_EQ(other.Post("/", "", "text/plain")->status, 405);
  EXPECT_EQ(other.Delete("/receipts/1.png")->status, 405);
  EXPECT_THAT(asked_, testing::IsEmpty());
}

TEST_F(PageServerTest, name_that_leads_here_is_not_enough) {
  for (const char* path : {"/", "/events", "/receipts/1.png"}) {
    EXPECT_EQ(caller_.get(path, {{"Host", "shop.example:80"}})->status, 403);
  }
  EXPECT_EQ(
      caller_.ask("set cover on", {{"Host", "shop.example"}, {"Origin", "http://shop.example"}})
          ->status,
      403);
  EXPECT_EQ(caller_.get("/", {{"Host", "localhost:9"}})->status, 200);
}

TEST_F(PageServerTest, long_request_is_refused) {
  EXPECT_EQ(caller_.ask(std::string(100000, 'x'))->status, 413);
  EXPECT_THAT(asked_, testing::IsEmpty());
}

TEST_F(PageServerTest, taken_port_is_an_error) {
  const int port = std::stoi(origin().substr(origin().rfind(':') + 1));
  EXPECT_THROW(PageServer(board_, requests_, {"127.0.0.1", port}), std::runtime_error);
  EXPECT_THROW(PageServer(board_, requests_, {"192.0.2.1", 0}), std::runtime_error);
}

TEST_F(PageServerTest, events_tell_all_to_who_comes_and_then_what_is_new) {
  board_.show_status({{"cover", "off"}});
  const std::string events = caller_.events_until([this](const std::string& so_far) {
    if (so_far.find("\"off\"") != std::string::npos) board_.show_status({{"cover", "on"}});
    return so_far.find("\"on\"") != std::string::npos;
  });
  EXPECT_THAT(events,
              StartsWith("retry: 500\ndata: {\"start\":true,\"status\":{\"cover\":\"off\"}"));
  EXPECT_THAT(events, HasSubstr("data: {\"start\":false,\"status\":{\"cover\":\"on\"}}\n\n"));
}

TEST_F(PageServerTest, paper_and_receipts_are_pictures) {
  DotImage strip(kPaperDots, 24);
  strip.set_ink(0, 0);
  board_.print(strip, 250, "a <line>");
  EXPECT_THAT(caller_.get("/paper/1/0.png")->body, StartsWith("\x89PNG"));
  EXPECT_EQ(caller_.get("/paper/1/1.png")->get_header_value("Content-Type"), "image/png");
  for (const char* none : {"/paper/1/2.png", "/paper/2/0.png", "/paper/0/0.png", "/receipts/1.png",
                           "/paper/99999999999999999999/0.png", "/paper/1/../../etc.png"}) {
    EXPECT_EQ(caller_.get(none)->status, 404) << none;
  }
  board_.deliver({"text", "picture", 1}, PaperEnd::kCut);
  EXPECT_EQ(caller_.get("/receipts/1.png")->body, "picture");
  EXPECT_EQ(caller_.get("/paper/1/0.png")->status, 404);
}

TEST_F(PageServerTest, so_many_may_watch_and_no_more) {
  std::vector<std::thread> watchers;
  watchers.reserve(PageServer::kMostWatchers);
  std::atomic<int> watching = 0;
  std::atomic<bool> enough = false;
  for (int i = 0; i < PageServer::kMostWatchers; ++i) {
    watchers.emplace_back([&] {
      HttpCaller watcher(origin());
      bool counted = false;
      watcher.events_until([&](const std::string&) {
        if (!std::exchange(counted, true)) ++watching;
        return enough.load();
      });
    });
  }
  while (watching < PageServer::kMostWatchers) std::this_thread::yield();
  EXPECT_EQ(caller_.get("/events")->status, 503);
  EXPECT_EQ(caller_.get("/")->status, 200);
  enough = true;
  board_.show_status({{"cover", "on"}});
  for (std::thread& watcher : watchers) watcher.join();
}

// Its connection's buffers are full long before all is written.
TEST_F(PageServerTest, watcher_that_never_reads_holds_nobody_up) {
  const int port = std::stoi(origin().substr(origin().rfind(':') + 1));
  const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  const std::string request = "GET /events HTTP/1.1\r\nHost: localhost\r\n\r\n";
  ASSERT_EQ(write(socket, request.data(), request.size()), static_cast<ssize_t>(request.size()));
  const std::string long_text(4000000, 'x');
  for (int i = 0; i < 20; ++i) board_.deliver({long_text, "picture", 1}, PaperEnd::kCut);
  EXPECT_EQ(caller_.ask("set cover on")->status, 200);
  EXPECT_EQ(caller_.get("/receipts/20.png")->status, 200);
  EXPECT_EQ(caller_.get("/receipts/1.png")->status, 404) << "only so much is kept";
  close(socket);
}

TEST(Board, keeps_so_many_commands_and_receipts) {
  Board board;
  for (std::size_t i = 0; i < 1005; ++i) board.add({{}, i, 1, "0A", "line feed"});
  for (int i = 0; i < 31; ++i) board.deliver({"", "picture", 1}, PaperEnd::kUncut);
  const std::string all = board.news_since(Board::kNothing, {})->json;
  EXPECT_THAT(all, AllOf(HasSubstr(R"("log":{"from":5,"entries":[{"offset":5,)"),
                         HasSubstr(R"("offset":1004,)")));
  EXPECT_FALSE(board.picture(1));
  EXPECT_TRUE(board.picture(2));
  EXPECT_TRUE(board.picture(31));
}

TEST(Board, grown_text_takes_the_place_of_the_shorter) {
  Board board;
  board.add({TranscriptEntry::Kind::kText, 7, 1, "41", "text \"A\""});
  const auto seen = board.news_since(Board::kNothing, {})->version;
  board.add({TranscriptEntry::Kind::kText, 7, 2, "41 42", "text \"AB\""});
  board.add_note("answer", "16", "answer");
  EXPECT_EQ(board.news_since(seen, {})->json,
            R"({"start":false,"log":{"from":0,"entries":[)"
            R"({"offset":7,"length":2,"kind":"text","hex":"41 42","words":"text \"AB\""},)"
            R"({"kind":"answer","hex":"16","words":"answer"}]}})");
}

TEST(Board, says_nothing_when_nothing_is_new_and_ends_when_closed) {
  Board board;
  const auto seen = board.news_since(Board::kNothing, {})->version;
  EXPECT_EQ(board.news_since(seen, {})->json, "");
  board.close();
  EXPECT_FALSE(board.news_since(seen, std::chrono::hours(1)));
}

TEST(RequestQueue, who_asks_a_closed_one_is_not_kept_waiting) {
  RequestQueue queue;
  std::thread asker([&] { EXPECT_FALSE(queue.ask("status")); });
  queue.close();
  asker.join();
  EXPECT_FALSE(queue.ask("status"));
}

TEST(PageAccess, knows_this_machine_by_address_alone) {
  for (const char* host :
       {"127.0.0.1", "127.0.0.1:80", "localhost", "localhost:8080", "[::1]:80", "192.0.2.7:1"}) {
    EXPECT_TRUE(is_own_host(host)) << host;
  }
  for (const char* host : {"", "shop.example", "shop.example:80", "localhost.shop.example",
                           "127.0.0.1.shop.example:80", "1.2.3", ":80", "[]", "[shop]:80"}) {
    EXPECT_FALSE(is_own_host(host)) << host;
  }
}

}  // namespace
}  // namespace virtual_printer
