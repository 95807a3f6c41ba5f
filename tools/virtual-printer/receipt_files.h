// Receipts as files: receipt-001.png and receipt-001.txt, and so on.
#pragma once

#include <filesystem>
#include <string>

#include "printer.h"
#include "receipt.h"

namespace virtual_printer {

// A receipt as people get it.
struct RenderedReceipt {
  std::string text;     // UTF-8
  std::string picture;  // PNG
  int height = 0;       // of the picture
};

RenderedReceipt render(const Receipt& receipt);

class ReceiptFiles {
 public:
  // Makes the directory if it is missing; throws when it cannot hold receipts, rather than when
  // the first of them is printed.
  explicit ReceiptFiles(std::filesystem::path directory);

  // Writes both files under the next free number; returns the picture's path.
  std::filesystem::path write(const RenderedReceipt& receipt, PaperEnd end);

 private:
  bool is_taken(int number) const;

  std::filesystem::path directory_;
  int last_number_ = 0;
};

}  // namespace virtual_printer
