#include "serial/serial_settings.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>

#include "byte_strings.h"

namespace {

struct AcceptedRow {
  const char* name;
  const char* settings;
  int baud;
  char parity;
  int data_bits;
  int stop_bits;
  char flow_control;
};

void PrintTo(const AcceptedRow& row, std::ostream* out) {
  *out << row.name;
}

class AcceptedSettings : public testing::TestWithParam<AcceptedRow> {};

TEST_P(AcceptedSettings, give_the_five_fields) {
  const AcceptedRow& row = GetParam();
  const auto settings = parse_serial_settings(row.settings);
  ASSERT_TRUE(settings.has_value()) << row.name << ": \"" << row.settings << '"';
  EXPECT_EQ(settings->baud, row.baud);
  EXPECT_EQ(settings->parity, row.parity);
  EXPECT_EQ(settings->dataBits, row.data_bits);
  EXPECT_EQ(settings->stopBits, row.stop_bits);
  EXPECT_EQ(settings->flowControl, row.flow_control);
}

INSTANTIATE_TEST_SUITE_P(
    values, AcceptedSettings,
    testing::Values(AcceptedRow{"baud_115200", "115200,none,8,1,none", 115200, 'n', 8, 1, 'n'},
                    AcceptedRow{"baud_38400", "38400,none,8,1,none", 38400, 'n', 8, 1, 'n'},
                    AcceptedRow{"baud_19200", "19200,none,8,1,none", 19200, 'n', 8, 1, 'n'},
                    AcceptedRow{"baud_9600", "9600,none,8,1,none", 9600, 'n', 8, 1, 'n'},
                    AcceptedRow{"baud_4800", "4800,none,8,1,none", 4800, 'n', 8, 1, 'n'},
                    AcceptedRow{"baud_2400", "2400,none,8,1,none", 2400, 'n', 8, 1, 'n'},
                    AcceptedRow{"parity_even", "9600,even,8,1,none", 9600, 'e', 8, 1, 'n'},
                    AcceptedRow{"parity_odd", "9600,odd,8,1,none", 9600, 'o', 8, 1, 'n'},
                    AcceptedRow{"seven_data_bits", "9600,none,7,1,none", 9600, 'n', 7, 1, 'n'},
                    AcceptedRow{"two_stop_bits", "9600,none,8,2,none", 9600, 'n', 8, 2, 'n'},
                    AcceptedRow{"hardware_flow", "9600,none,8,1,hdwr", 9600, 'n', 8, 1, 'h'},
                    AcceptedRow{"all_others", "2400,odd,7,2,hdwr", 2400, 'o', 7, 2, 'h'}),
    RowName());

// A name counts by its beginning.
INSTANTIATE_TEST_SUITE_P(
    names_by_prefix, AcceptedSettings,
    testing::Values(AcceptedRow{"evenly", "9600,evenly,8,1,none", 9600, 'e', 8, 1, 'n'},
                    AcceptedRow{"oddity", "9600,oddity,8,1,none", 9600, 'o', 8, 1, 'n'},
                    AcceptedRow{"nonesuch_parity", "9600,nonesuch,8,1,none", 9600, 'n', 8, 1, 'n'},
                    AcceptedRow{"nonesuch_flow", "9600,none,8,1,nonesuch", 9600, 'n', 8, 1, 'n'},
                    AcceptedRow{"hdwrflow", "9600,none,8,1,hdwrflow", 9600, 'n', 8, 1, 'h'},
                    AcceptedRow{"space_after_names", "9600,even ,8,1,hdwr ", 9600, 'e', 8, 1, 'h'},
                    AcceptedRow{"two_names_in_one", "9600,evenodd,8,1,nonehdwr", 9600, 'e', 8, 1,
                                'n'}),
    RowName());

// A number ends at the first byte that is no digit.
INSTANTIATE_TEST_SUITE_P(
    numbers_by_their_digits, AcceptedSettings,
    testing::Values(AcceptedRow{"eight_bits", "9600,none,8bits,1,none", 9600, 'n', 8, 1, 'n'},
                    AcceptedRow{"baud_with_unit", "9600bps,none,8,1,none", 9600, 'n', 8, 1, 'n'},
                    AcceptedRow{"space_after", "9600 ,none,7 ,2 ,none", 9600, 'n', 7, 2, 'n'},
                    AcceptedRow{"stop_bits_1_5", "9600,none,8,1.5,none", 9600, 'n', 8, 1, 'n'},
                    AcceptedRow{"minus_after", "9600,none,8-9,1,none", 9600, 'n', 8, 1, 'n'},
                    AcceptedRow{"zeros_before", "0009600,none,08,01,none", 9600, 'n', 8, 1, 'n'},
                    AcceptedRow{"many_zeros_before", "00000000000000000000009600,none,8,1,none",
                                9600, 'n', 8, 1, 'n'}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    more_commas, AcceptedSettings,
    testing::Values(AcceptedRow{"comma_at_the_end", "9600,none,8,1,none,", 9600, 'n', 8, 1, 'n'},
                    AcceptedRow{"sixth_field", "9600,none,8,1,hdwr,none", 9600, 'n', 8, 1, 'h'},
                    AcceptedRow{"only_commas_after", "9600,odd,7,2,none,,,,", 9600, 'o', 7, 2,
                                'n'}),
    RowName());

struct RefusedRow {
  const char* name;
  const char* settings;
};

void PrintTo(const RefusedRow& row, std::ostream* out) {
  *out << row.name;
}

class RefusedSettings : public testing::TestWithParam<RefusedRow> {};

TEST_P(RefusedSettings, give_nothing) {
  const RefusedRow& row = GetParam();
  EXPECT_FALSE(parse_serial_settings(row.settings).has_value())
      << row.name << ": \"" << row.settings << '"';
}

INSTANTIATE_TEST_SUITE_P(fewer_than_four_commas, RefusedSettings,
                         testing::Values(RefusedRow{"empty", ""}, RefusedRow{"baud_only", "9600"},
                                         RefusedRow{"two_fields", "9600,none"},
                                         RefusedRow{"three_fields", "9600,none,8"},
                                         RefusedRow{"four_fields", "9600,none,8,1"},
                                         RefusedRow{"one_missing", "9600,8,1,none"},
                                         RefusedRow{"semicolons", "9600;none;8;1;none"},
                                         RefusedRow{"spaces_between", "9600 none 8 1 none"}),
                         RowName());

INSTANTIATE_TEST_SUITE_P(empty_fields, RefusedSettings,
                         testing::Values(RefusedRow{"all_empty", ",,,,"},
                                         RefusedRow{"no_baud", ",none,8,1,none"},
                                         RefusedRow{"no_parity", "9600,,8,1,none"},
                                         RefusedRow{"no_data_bits", "9600,none,,1,none"},
                                         RefusedRow{"no_stop_bits", "9600,none,8,,none"},
                                         RefusedRow{"no_flow", "9600,none,8,1,"},
                                         RefusedRow{"comma_before", ",9600,none,8,1,none"},
                                         RefusedRow{"doubled_comma", "9600,,none,8,1,none"}),
                         RowName());

INSTANTIATE_TEST_SUITE_P(
    unsupported_numbers, RefusedSettings,
    testing::Values(RefusedRow{"baud_0", "0,none,8,1,none"},
                    RefusedRow{"baud_300", "300,none,8,1,none"},
                    RefusedRow{"baud_1200", "1200,none,8,1,none"},
                    RefusedRow{"baud_57600", "57600,none,8,1,none"},
                    RefusedRow{"baud_230400", "230400,none,8,1,none"},
                    RefusedRow{"baud_9601", "9601,none,8,1,none"},
                    RefusedRow{"baud_960", "960,none,8,1,none"},
                    RefusedRow{"baud_96000", "96000,none,8,1,none"},
                    RefusedRow{"baud_in_hex", "0x2580,none,8,1,none"},
                    RefusedRow{"baud_is_a_word", "fast,none,8,1,none"},
                    RefusedRow{"data_bits_0", "9600,none,0,1,none"},
                    RefusedRow{"data_bits_5", "9600,none,5,1,none"},
                    RefusedRow{"data_bits_6", "9600,none,6,1,none"},
                    RefusedRow{"data_bits_9", "9600,none,9,1,none"},
                    RefusedRow{"data_bits_88", "9600,none,88,1,none"},
                    RefusedRow{"data_bits_are_a_word", "9600,none,eight,1,none"},
                    RefusedRow{"stop_bits_0", "9600,none,8,0,none"},
                    RefusedRow{"stop_bits_3", "9600,none,8,3,none"},
                    RefusedRow{"stop_bits_12", "9600,none,8,12,none"},
                    RefusedRow{"stop_bits_are_a_word", "9600,none,8,one,none"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(
    numbers_that_are_right_only_when_cut_to_fewer_bits, RefusedSettings,
    testing::Values(RefusedRow{"baud_plus_2_to_the_32", "4294976896,none,8,1,none"},
                    RefusedRow{"baud_plus_2_to_the_64", "18446744073709561216,none,8,1,none"},
                    RefusedRow{"baud_of_forty_digits",
                               "9999999999999999999999999999999999999999,none,8,1,none"},
                    RefusedRow{"data_bits_plus_256", "9600,none,264,1,none"},
                    RefusedRow{"data_bits_plus_65536", "9600,none,65544,1,none"},
                    RefusedRow{"data_bits_plus_2_to_the_32", "9600,none,4294967304,1,none"},
                    RefusedRow{"data_bits_plus_2_to_the_64",
                               "9600,none,18446744073709551624,1,none"},
                    RefusedRow{"stop_bits_plus_256", "9600,none,8,257,none"},
                    RefusedRow{"stop_bits_plus_2_to_the_32", "9600,none,8,4294967297,none"}),
    RowName());

INSTANTIATE_TEST_SUITE_P(signs, RefusedSettings,
                         testing::Values(RefusedRow{"baud_minus", "-9600,none,8,1,none"},
                                         RefusedRow{"baud_plus", "+9600,none,8,1,none"},
                                         RefusedRow{"data_bits_minus", "9600,none,-8,1,none"},
                                         RefusedRow{"data_bits_plus", "9600,none,+8,1,none"},
                                         RefusedRow{"stop_bits_minus", "9600,none,8,-1,none"},
                                         RefusedRow{"stop_bits_plus", "9600,none,8,+1,none"}),
                         RowName());

INSTANTIATE_TEST_SUITE_P(spaces_are_not_skipped, RefusedSettings,
                         testing::Values(RefusedRow{"before_baud", " 9600,none,8,1,none"},
                                         RefusedRow{"before_parity", "9600, none,8,1,none"},
                                         RefusedRow{"before_data_bits", "9600,none, 8,1,none"},
                                         RefusedRow{"before_stop_bits", "9600,none,8, 1,none"},
                                         RefusedRow{"before_flow", "9600,none,8,1, none"},
                                         RefusedRow{"tab_before_baud", "\t9600,none,8,1,none"},
                                         RefusedRow{"line_end_before_data_bits",
                                                    "9600,none,\n8,1,none"}),
                         RowName());

INSTANTIATE_TEST_SUITE_P(unsupported_names, RefusedSettings,
                         testing::Values(RefusedRow{"parity_space", "9600,space,8,1,none"},
                                         RefusedRow{"parity_mark", "9600,mark,8,1,none"},
                                         RefusedRow{"parity_letter", "9600,n,8,1,none"},
                                         RefusedRow{"parity_cut_short", "9600,non,8,1,none"},
                                         RefusedRow{"even_cut_short", "9600,eve,8,1,none"},
                                         RefusedRow{"odd_cut_short", "9600,od,8,1,none"},
                                         RefusedRow{"parity_in_capitals", "9600,NONE,8,1,none"},
                                         RefusedRow{"parity_capitalised", "9600,Even,8,1,none"},
                                         RefusedRow{"parity_not_at_the_start",
                                                    "9600,xnone,8,1,none"},
                                         RefusedRow{"parity_hdwr", "9600,hdwr,8,1,none"},
                                         RefusedRow{"flow_xonxoff", "9600,none,8,1,xonxoff"},
                                         RefusedRow{"flow_hardware", "9600,none,8,1,hardware"},
                                         RefusedRow{"flow_even", "9600,none,8,1,even"},
                                         RefusedRow{"flow_cut_short", "9600,none,8,1,hdw"},
                                         RefusedRow{"flow_in_capitals", "9600,none,8,1,HDWR"}),
                         RowName());

TEST(SerialSettings, end_where_the_string_ends) {
  const std::string whole = "9600,none,8,1,none";
  const std::string_view cut = std::string_view(whole).substr(0, whole.size() - 1);
  EXPECT_FALSE(parse_serial_settings(cut).has_value());
}

TEST(SerialSettings, every_proper_beginning_of_them_is_refused) {
  const std::string whole = "115200,none,8,1,hdwr";
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_FALSE(parse_serial_settings(std::string(whole, 0, size)).has_value()) << size;
  }
  EXPECT_TRUE(parse_serial_settings(whole).has_value());
}

}  // namespace
