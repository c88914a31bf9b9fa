#include "contest.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "instructions/counted.h"
#include "random_batch.h"

namespace {

bool counting = false;

constexpr int kRounds = 401;
constexpr double kRoundNanoseconds = 2e5;  // far below a slice of the scheduler

double nanoseconds(const std::function<void()>& work, int repeats) {
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < repeats; ++i) work();
  const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - begin;
  return elapsed.count() / repeats;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<long>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

int repeatsOf(const std::function<void()>& work) {
  work();
  // The least of some tries: one that the machine interrupts would make the rounds too short.
  double least = nanoseconds(work, 3);
  for (int i = 0; i < 5; ++i) least = std::min(least, nanoseconds(work, 3));
  return std::max(1, static_cast<int>(kRoundNanoseconds / least));
}

}  // namespace

double medianNanoseconds(const std::function<void()>& work) {
  const int repeats = repeatsOf(work);
  constexpr int kSamples = 41;
  std::vector<double> times;
  times.reserve(kSamples);
  for (int round = 0; round < kSamples; ++round) times.push_back(nanoseconds(work, repeats));
  return median(times);
}

void countInsteadOfTiming() {
  counting = true;
}

bool countsInsteadOfTiming() {
  return counting;
}

bool run(const Contest& contest) {
  if (counting) {
    std::string name = contest.what;
    std::ranges::replace(name, ' ', '-');
    countInstructions(name.c_str(), 1, 4, kBatch, [&contest](int times) {
      for (int i = 0; i < times; ++i) contest.contenders[1].work();
    });
    return true;
  }
  const std::size_t count = contest.contenders.size();
  std::vector<int> repeats;
  repeats.reserve(count);
  for (const auto& contender : contest.contenders) repeats.push_back(repeatsOf(contender.work));
  // Ratios within a round: what slows the machine for a while slows all contenders.
  std::vector<std::vector<double>> ratios(count);
  for (int round = 0; round < kRounds; ++round) {
    std::vector<double> times;
    times.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
      times.push_back(nanoseconds(contest.contenders[i].work, repeats[i]));
    for (std::size_t i = 0; i < count; ++i) ratios[i].push_back(times[i] / times[0]);
  }
  const double ours = median(ratios[1]);
  const bool isMet = contest.target == 0 || ours <= contest.target;
  std::printf("%-3s %-34s", contest.figure.c_str(), contest.what.c_str());
  if (contest.target != 0)
    std::printf(" %-7s target %-6.3f", isMet ? "met" : "MISSED", contest.target);
  else
    std::printf(" %-7s        %-6s", "", "");
  for (std::size_t i = 1; i < count; ++i)
    std::printf("  %s %.3f", contest.contenders[i].name.c_str(), median(ratios[i]));
  std::printf("  (%s 1.000)\n", contest.contenders[0].name.c_str());
  std::fflush(stdout);
  return isMet;
}
