#pragma once

#include <chrono>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

// Answers each line "read ROWS KINDS SQL" of the input with the seconds that `read(sql)`, which
// returns the number of rows, took.
template <typename Read>
int answerReads(Read read) {
  try {
    for (std::string line; std::getline(std::cin, line);) {
      std::istringstream words(line);
      std::string command;
      std::string kinds;
      std::string sql;
      int rows = 0;
      words >> command >> rows >> kinds >> std::ws;
      std::getline(words, sql);
      const auto start = std::chrono::steady_clock::now();
      const int found = read(sql);
      const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
      if (found != rows) throw std::runtime_error("rows are missing: " + std::to_string(found));
      std::cout << elapsed.count() << std::endl;
    }
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "peer: " << error.what() << '\n';
    return 1;
  }
}
