// Takes the right to write to a file away: what all systems have in common.
#include "tests/support/file_protection.h"

#include <fstream>

namespace test_support {

bool WriteProtection::Holds() const { return !std::ofstream(file_, std::ios::app); }

}  // namespace test_support
