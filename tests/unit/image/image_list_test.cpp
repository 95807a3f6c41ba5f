#include "image/image_list.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The names of a list, or "refused".
std::vector<std::string> names(const std::string& list) {
  const std::optional<ImageList> images = parse_image_list(list.c_str());
  if (!images) return {"refused"};
  return {images->BitmapsList, images->BitmapsList + images->Count};
}

TEST(ImageList, a_name_ends_with_a_separator) {
  EXPECT_THAT(names("a.bmp|b.bmp|"), ElementsAre("a.bmp", "b.bmp"));
  EXPECT_THAT(names("logo.bmp|"), ElementsAre("logo.bmp"));
}

TEST(ImageList, what_follows_the_last_separator_is_no_name) {
  EXPECT_THAT(names("a.bmp|b.bmp"), ElementsAre("a.bmp"));
  EXPECT_THAT(names("a.bmp"), IsEmpty());
  EXPECT_THAT(names(""), IsEmpty());
  EXPECT_THAT(names(std::string(1000, 'x')), IsEmpty());
}

TEST(ImageList, an_empty_name_counts) {
  EXPECT_THAT(names("|"), ElementsAre(""));
  EXPECT_THAT(names("a||b|"), ElementsAre("a", "", "b"));
}

TEST(ImageList, names_are_taken_as_they_stand) {
  EXPECT_THAT(names(" a b.bmp |/x/\\\"|"), ElementsAre(" a b.bmp ", "/x/\\\""));
}

TEST(ImageList, a_name_has_at_most_127_characters) {
  EXPECT_THAT(names(std::string(127, 'x') + "|"), ElementsAre(std::string(127, 'x')));
  EXPECT_THAT(names(std::string(128, 'x') + "|"), ElementsAre("refused"));
  EXPECT_THAT(names("a|" + std::string(128, 'x') + "|"), ElementsAre("refused"));
}

TEST(ImageList, there_are_at_most_32_names) {
  std::string list;
  for (int i = 0; i < 32; ++i) list += "x|";
  EXPECT_EQ(names(list + "y").size(), 32U);
  EXPECT_THAT(names(list + "|"), ElementsAre("refused"));
}

}  // namespace
