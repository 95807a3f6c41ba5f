#include "receipt_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "paper.h"
#include "support/temporary_folder.h"

namespace virtual_printer {
namespace {

std::string content_of(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(ReceiptFiles, writes_picture_and_text) {
  const testkit::TemporaryFolder folder;
  ReceiptFiles files(folder.path() / "new");
  EXPECT_EQ(files.write(render(printed("a")), PaperEnd::kCut),
            folder.path() / "new/receipt-001.png");
  EXPECT_EQ(content_of(folder.path() / "new/receipt-001.txt"), "a\n");
  EXPECT_TRUE(content_of(folder.path() / "new/receipt-001.png").starts_with("\x89PNG"));
}

TEST(ReceiptFiles, counts_past_files_of_every_kind) {
  const testkit::TemporaryFolder folder;
  std::ofstream(folder.path() / "receipt-001.txt").close();
  std::ofstream(folder.path() / "receipt-002-uncut.png").close();
  ReceiptFiles files(folder.path());
  EXPECT_EQ(files.write(render(printed("a")), PaperEnd::kCut).filename(), "receipt-003.png");
  EXPECT_EQ(files.write(render(printed("b")), PaperEnd::kUncut).filename(),
            "receipt-004-uncut.png");
  EXPECT_EQ(content_of(folder.path() / "receipt-004-uncut.txt"), "b\n");
}

TEST(ReceiptFiles, folder_that_cannot_be_made_is_an_error_at_once) {
  const testkit::TemporaryFolder folder;
  std::ofstream(folder.path() / "file").close();
  EXPECT_THROW(ReceiptFiles(folder.path() / "file"), std::runtime_error);
  EXPECT_THROW(ReceiptFiles(folder.path() / "file" / "new"), std::runtime_error);
}

}  // namespace
}  // namespace virtual_printer
