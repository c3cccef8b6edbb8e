// What phones dial for numbers as people of eleven countries write them.
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
      {"US", "+1 212-555-0123 ext. 45", "+12125550123"},
      {"US", "011 44 20 7946 0018", "+442079460018"},
      {"US", "1-800-FLOWERS", "+18003569377"},
      {"US", "212-555-0123, 646-555-0199", "+12125550123"},
      {"GB", "020 7946 0018", "+442079460018"},
      {"GB", "+44 (0) 20 7946 0018", "+442079460018"},
      {"FR", "01 42 68 53 00", "+33142685300"},
      {"FR", "+33 (0)1.42.68.53.00", "+33142685300"},
      {"CH", "044 668 18 00", "+41446681800"},
      {"NL", "020-555 1111", "+31205551111"},
      {"ES", "912 34 56 78", "+34912345678"},
      {"SE", "08-123 456 78", "+46812345678"},
      {"PL", "22 123 45 67", "+48221234567"},
      {"IT", "06 6982 1234", "+390669821234"},  // the 0 is part of the number
      // What has no country, and what is no number of the public network.
      {"", "030 5550-1022", "03055501022"},
      {"DE", "1022", "1022"},
      {"DE", "112", "112"},
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
