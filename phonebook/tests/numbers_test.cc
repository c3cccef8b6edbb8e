// What phones dial for numbers as people of five countries write them.
#include "phonebook/numbers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace phonebook::tests {

namespace {

TEST(Numbers, AreDialedAsTheirCountriesWriteThem) {
  struct Case {
    std::string region, telephone, dialed;
  };
  const std::vector<Case> cases = {
      {"", "+49 (0)30 5550-1022", "+493055501022"},
      {"", "+49 30 1 / +49 171 2", "+49301"},
      {"DE", "030 / 5550 1022", "+493055501022"},
      {"DE", "00 43 1 58858-0", "+431588580"},
      {"DE", "030 55501022 / 0171 2345678", "+493055501022"},
      {"DE", "030 55501022 / 55501023", "+493055501022"},
      {"DE", "tel:+49-30-5550-1022 (Zentrale)", "+493055501022"},
      {"DE", "+49 30 55501022 Durchwahl 12", "+493055501022"},
      {"AT", "01/588 58-0", "+431588580"},
      {"US", "(212) 555-0123", "+12125550123"},
      {"US", "1-800-FLOWERS", "+18003569377"},
      {"US", "212-555-0123, 646-555-0199", "+12125550123"},
      {"GB", "020 7946 0018", "+442079460018"},
      {"IT", "06 6982 1234", "+390669821234"},  // the 0 is part of the number
      // What has no country, and what is no number of the public network.
      {"", "030 5550-1022", "03055501022"},
      {"DE", "1022", "1022"},
      {"DE", "10 22 / 0171 2345678", "1022"},
      {"DE", "*21*1022#", "*21*1022#"},
      {"DE", "sip:anna@phones.example", "sip:anna@phones.example"},
      {"DE", "5550.1022@phones.example", "5550.1022@phones.example"},
      {"DE", "Reception", "Reception"},
  };
  for (int round = 0; round < 2; ++round) {  // the second from memory
    for (const auto& [region, telephone, dialed] : cases) {
      EXPECT_EQ(DialString(telephone, region), dialed) << region << ": " << telephone;
    }
  }
  for (const std::string& odd : {std::string(), std::string(" / "), std::string(3, '\0'),
                                 std::string(2000, '0'), std::string("\xff+ / (0")}) {
    DialString(odd, "DE");
  }
}

}  // namespace

}  // namespace phonebook::tests
