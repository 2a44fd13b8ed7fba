#include <string>
#include <vector>

#include "driver/run.h"

int main(int argc, char** argv) {
  quillet::RUN_QUILLET(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
