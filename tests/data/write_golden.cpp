#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "golden/golden_files.h"

// write_golden <folder>: writes the golden files of both formats below the folder, usually tests/data.

int main(int argc, char** argv) try {
  if (argc != 2) {
    std::cerr << "usage: write_golden <folder>\n";
    return 2;
  }
  for (const kestrel::testing::GoldenFile& golden : kestrel::testing::MakeGoldenFiles()) {
    const std::filesystem::path path = std::filesystem::path(argv[1]) / golden.name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.exceptions(std::ios::badbit | std::ios::failbit);
    file << golden.bytes;
    file.close();
    std::cout << path.string() << ": " << golden.bytes.size() << " bytes\n";
  }
  return 0;
} catch (const std::exception& error) {
  std::cerr << "write_golden: " << error.what() << '\n';
  return 1;
}
