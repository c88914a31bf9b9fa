#include "standin/property_data_service.h"

#include <gtest/gtest.h>

namespace KORVEX::Zel {
namespace {

TEST(PropertyDataService, GivesTextsOrTheDefault) {
  const PropertyDataService service("orders", {{"DSN", "db1"}, {"Empty", ""}});
  EXPECT_EQ(service.getName(), "orders");
  EXPECT_EQ(service.getPropertyValueAsString("DSN", "x"), "db1");
  EXPECT_EQ(service.getPropertyValueAsString("Empty", "x"), "");
  EXPECT_EQ(service.getPropertyValueAsString("dsn", "x"), "x");
}

TEST(PropertyDataService, ReadsBooleans) {
  struct Case {
    const char* text;
    bool withDefaultFalse;
    bool withDefaultTrue;
  };
  for (const Case& row : {Case{"true", true, true},
                          {"YES", true, true},
                          {"on", true, true},
                          {"1", true, true},
                          {"False", false, false},
                          {"no", false, false},
                          {"OFF", false, false},
                          {"0", false, false},
                          {"", false, true},
                          {"2", false, true},
                          {"true ", false, true}}) {
    const PropertyDataService service("s", {{"Key", row.text}});
    EXPECT_EQ(service.getPropertyValueAsBool("Key", false), row.withDefaultFalse) << row.text;
    EXPECT_EQ(service.getPropertyValueAsBool("Key", true), row.withDefaultTrue) << row.text;
    EXPECT_TRUE(service.getPropertyValueAsBool("Other", true));
  }
}

}  // namespace
}  // namespace KORVEX::Zel
