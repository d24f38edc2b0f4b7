// The floor as a program of its own: cold_floor TEMPLATE.

#include <cstdio>
#include <fstream>
#include <sstream>

#include "benchmarks/Floor.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::ifstream file(argv[1], std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  std::printf("%zu\n", kestrelon::benchmarks::RunFloor(content.str()));
  return 0;
}
