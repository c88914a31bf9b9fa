#include "zeldb/server_probe.h"

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string_view>

namespace zeldb {
namespace {

class Socket {
 public:
  explicit Socket(const addrinfo& address)
      : handle_(socket(address.ai_family, address.ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC,
                       address.ai_protocol)) {}
  ~Socket() {
    if (handle_ >= 0) {
      close(handle_);
    }
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  int handle() const { return handle_; }

  bool wait(short events, std::chrono::milliseconds limit) const {
    pollfd waiting = {handle_, events, 0};
    return poll(&waiting, 1, static_cast<int>(limit.count())) > 0;
  }

  // 0, or the number of the error.
  int connectTo(const addrinfo& address, std::chrono::milliseconds limit) const {
    if (handle_ < 0) {
      return errno;
    }
    if (connect(handle_, address.ai_addr, address.ai_addrlen) == 0) {
      return 0;
    }
    if (errno != EINPROGRESS) {
      return errno;
    }
    if (!wait(POLLOUT, limit)) {
      return ETIMEDOUT;
    }
    int error = 0;
    socklen_t length = sizeof error;
    getsockopt(handle_, SOL_SOCKET, SO_ERROR, &error, &length);
    return error;
  }

 private:
  int handle_;
};

// PostgreSQL's request for TLS: the packet's length, and the number that stands for it.
constexpr std::array<unsigned char, 8> kTlsRequest = {0, 0, 0, 8, 4, 210, 22, 47};
constexpr std::string_view kTlsAnswers = "SNE";
// MariaDB's first packet has its version behind four bytes of length and number.
constexpr std::size_t kVersionAt = 4;
constexpr unsigned char kProtocolVersion = 10;
constexpr unsigned char kErrorPacket = 255;

Reach listen(const Socket& socket, Greeting greeting, std::chrono::milliseconds limit) {
  if (greeting == Greeting::kNone) {
    return Reach::kReached;
  }
  if (greeting == Greeting::kAnswersTlsRequest &&
      send(socket.handle(), kTlsRequest.data(), kTlsRequest.size(), MSG_NOSIGNAL) < 0) {
    return Reach::kStranger;
  }
  if (!socket.wait(POLLIN, limit)) {
    return Reach::kSilent;
  }
  std::array<unsigned char, 64> bytes = {};
  const ssize_t length = recv(socket.handle(), bytes.data(), bytes.size(), 0);
  if (length <= 0) {
    return Reach::kStranger;
  }
  const bool expected =
      greeting == Greeting::kAnswersTlsRequest
          ? length == 1 && kTlsAnswers.find(static_cast<char>(bytes[0])) != std::string_view::npos
          : length > static_cast<ssize_t>(kVersionAt) &&
                (bytes[kVersionAt] == kProtocolVersion || bytes[kVersionAt] == kErrorPacket);
  return expected ? Reach::kReached : Reach::kStranger;
}

ProbeResult probeOne(const addrinfo& address, Greeting greeting, std::chrono::milliseconds limit) {
  const Socket socket(address);
  switch (const int error = socket.connectTo(address, limit)) {
    case 0:
      return {listen(socket, greeting, limit), {}};
    case ECONNREFUSED:
      return {Reach::kRefused, std::strerror(error)};
    case ETIMEDOUT:
      return {Reach::kTimeout, std::strerror(error)};
    default:
      return {Reach::kFailed, std::strerror(error)};
  }
}

}  // namespace

ProbeResult probeServer(const ServerAddress& address, Greeting greeting,
                        std::chrono::milliseconds limit) {
  addrinfo wanted = {};
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int error = getaddrinfo(address.host.c_str(), address.port.c_str(), &wanted, &found);
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owner(found, freeaddrinfo);
  if (error != 0) {
    return {Reach::kUnknownName, gai_strerror(error)};
  }
  ProbeResult result;
  for (const addrinfo* at = found; at != nullptr; at = at->ai_next) {
    result = probeOne(*at, greeting, limit);
    if (result.reach <= Reach::kStranger) {
      break;
    }
  }
  return result;
}

}  // namespace zeldb
