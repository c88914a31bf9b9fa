#include "host/log_service_impl.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "standin/log_sink.h"

namespace KORVEX::Zel {
namespace {

TEST(LogServiceImpl, HandsKeyAndTextsToTheInstalledSinkOnly) {
  LogServiceImpl::log("dropped");
  std::vector<std::string> seen;
  LogSink none = installLogSink([&](const LogMessage& message) {
    seen.push_back(std::string(message.key) + "|" + std::string(message.text1) + "|" +
                   std::string(message.text2));
  });
  EXPECT_FALSE(none);
  LogServiceImpl::log("801000-3_A");
  LogServiceImpl::log("801001-4_B", "one");
  LogServiceImpl::log("801002-3_C", "one", "two");
  LogServiceImpl::log("801003-3_D", nullptr, "two");
  LogServiceImpl::log(nullptr);
  const LogSink mine = installLogSink(std::move(none));
  EXPECT_TRUE(mine);
  LogServiceImpl::log("dropped");
  EXPECT_EQ(seen, (std::vector<std::string>{"801000-3_A||", "801001-4_B|one|", "801002-3_C|one|two",
                                            "801003-3_D||two", "||"}));
}

TEST(LogServiceImpl, DropsWhatTheSinkThrows) {
  installLogSink([](const LogMessage&) { throw std::runtime_error("full"); });
  EXPECT_NO_THROW(LogServiceImpl::log("801000-3_A"));
  installLogSink({});
}

}  // namespace
}  // namespace KORVEX::Zel
