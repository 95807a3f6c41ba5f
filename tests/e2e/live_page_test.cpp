// The printer's page in a real browser, with programs printing through the library.

#include <gmock/gmock.h>

#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "browser.h"
#include "support/printed_paper.h"
#include "tills.h"

namespace {

using testing::HasSubstr;
using testing::Not;

std::string button(const std::string& name) {
  return "document.querySelector('[data-name=" + name + "]')";
}

std::string is_pressed(const std::string& name) {
  return button(name) + ".getAttribute('aria-pressed') === 'true'";
}

std::string text_of(const std::string& id) {
  return "document.getElementById('" + id + "').textContent";
}

const std::string kOpenPaper = "document.getElementById('open').getAttribute('aria-label')";

// How many dots are black on the pictures that one finds so.
std::string ink_of(const std::string& selector) {
  return "[...document.querySelectorAll('" + selector + R"(')].reduce((ink, picture) => {
      if (!picture.complete || !picture.naturalWidth) return ink;
      const canvas = new OffscreenCanvas(picture.naturalWidth, picture.naturalHeight);
      const context = canvas.getContext('2d');
      context.drawImage(picture, 0, 0);
      const dots = context.getImageData(0, 0, canvas.width, canvas.height).data;
      for (let i = 0; i < dots.length; i += 4) ink += dots[i] < 128;
      return ink;
    }, 0))";
}

class LivePage : public PrinterTest {
 protected:
  LivePage() : PrinterTest(Line::kTcp) {}

  void SetUp() override {
    PrinterTest::SetUp();
    if (!IsSkipped() && !Browser::is_installed()) GTEST_SKIP() << "there is no browser";
  }

  void show(const Words& options, const Words& command) {
    Words words{"--page", "0"};
    words.insert(words.end(), options.begin(), options.end());
    start_under_printer(words, command);
    ASSERT_TRUE(wait_for_line("ready"));
    browser_.emplace();
    browser_->open(lines("page ").front().substr(5));
    ASSERT_TRUE(browser_->wait_for("!" + button("cover") + ".disabled"));
  }

  // As somebody does who has no mouse.
  void press(const std::string& name) {
    browser_->value_of(button(name) + ".focus()");
    browser_->press_enter();
  }

  static Words nobody() { return {"/bin/sleep", "1000"}; }

  std::optional<Browser> browser_;
};

TEST_F(LivePage, receipt_comes_out_on_it_with_its_commands_beside_it) {
  show({"--fault", "cover@7", "--stay"}, receipt());
  ASSERT_TRUE(browser_->wait_for(kOpenPaper + ".includes('Qty Item')"));
  ASSERT_TRUE(browser_->wait_for(ink_of("#tiles img") + " > 1000"));
  EXPECT_EQ(browser_->value_of(kOpenPaper + ".includes('Coffee')"), "false") << "not printed yet";
  EXPECT_EQ(browser_->value_of("document.querySelectorAll('#receipts img').length"), "0");
  ASSERT_TRUE(browser_->wait_for(text_of("lamp-error") + " === 'Error: cover open'"));
  for (const char* words :
       {"text \"CORNER SHOP\"", "cut, full", "picture: download 192 x 72 dots"}) {
    EXPECT_TRUE(browser_->wait_for(text_of("entries") + ".includes('" + words + "')")) << words;
  }

  press("cover");
  ASSERT_TRUE(browser_->wait_for("document.querySelectorAll('#receipts img').length === 1"));
  EXPECT_TRUE(browser_->wait_for("document.querySelector('#receipts img').alt.includes('TOTAL')"));
  EXPECT_TRUE(browser_->wait_for(ink_of("#receipts img") + " > 10000"));
  EXPECT_TRUE(browser_->wait_for("document.getElementById('open').hidden"));
  EXPECT_TRUE(wait_for_line("confirmed"));
}

TEST_F(LivePage, faults_by_its_buttons_reach_the_library) {
  show({}, program(EXAMPLES_FOLDER "/status"));
  ASSERT_TRUE(wait_for_line("0, "));
  const auto press_and_see = [this](const std::string& name, const std::string& status) {
    const std::size_t before = lines(status).size();
    press(name);
    EXPECT_TRUE(wait_for_line(status, before + 1)) << name << ", " << status;
  };
  const std::vector<std::pair<std::string, std::string>> faults{
      {"cover", "1, "}, {"paper-out", "2, "}, {"near-end", "8, "}, {"jam", "16, "}};
  for (const auto& [name, status] : faults) {
    press_and_see(name, status);
    EXPECT_TRUE(browser_->wait_for(is_pressed(name))) << name;
    press_and_see(name, "0, ");
    EXPECT_TRUE(browser_->wait_for("!(" + is_pressed(name) + ")")) << name;
  }
  press_and_see("connection-lost", "4, ");
}

TEST_F(LivePage, every_button_sets_and_ends_what_it_says) {
  show({}, nobody());
  std::istringstream names(
      browser_->value_of("[...document.querySelectorAll('[data-name]')].map(node => "
                         "node.dataset.name).join(' ') + ' '"));
  names.ignore();  // a quotation mark
  std::string name;
  while (names >> name && name != "\"") {
    press(name);
    EXPECT_TRUE(browser_->wait_for(is_pressed(name))) << name;
    EXPECT_THAT("\n" + status(), Not(HasSubstr("\n" + name + " off")));
    press(name);
    EXPECT_TRUE(browser_->wait_for("!(" + is_pressed(name) + ")")) << name;
    EXPECT_THAT("\n" + status(), HasSubstr("\n" + name + " off"));
  }
  press("drawer");
  EXPECT_TRUE(browser_->wait_for(text_of("lamp-drawer") + " === 'Drawer: open'"));
  press("power-off");
  EXPECT_TRUE(browser_->wait_for(text_of("lamp-power") + " === 'Power: off'"));
}

TEST_F(LivePage, goes_on_when_the_printer_is_back) {
  show({"--fault", "cover@0"}, nobody());
  const std::string url = lines("page ").front().substr(5);
  ASSERT_TRUE(browser_->wait_for(is_pressed("cover")));
  end();
  ASSERT_TRUE(browser_->wait_for("!document.getElementById('gone').hidden"));
  EXPECT_EQ(browser_->value_of(button("cover") + ".disabled"), "true");

  const std::size_t colon = url.rfind(':');
  start_under_printer({"--page", url.substr(colon + 1, url.rfind('/') - colon - 1)}, nobody());
  EXPECT_TRUE(browser_->wait_for("document.getElementById('gone').hidden"));
  EXPECT_TRUE(browser_->wait_for("!(" + is_pressed("cover") + ")"));
  press("jam");
  EXPECT_TRUE(browser_->wait_for(is_pressed("jam")));
}

}  // namespace
