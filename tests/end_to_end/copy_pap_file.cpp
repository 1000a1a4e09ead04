// Copies one file over another as backups are made, for a test that kills it: SOURCE TARGET.
#include <cstdio>

#include "platform/files/paths.h"
#include "updates/modSharedPapFolder.h"

int main(int argc, char** argv) {
  constexpr int kArguments = 3;  // the program's own name among them
  if (argc != kArguments) {
    std::fputs("usage: copy_pap_file SOURCE TARGET\n", stderr);
    return 2;
  }
  return CopyPapFile(files::ToText(argv[1]), files::ToText(argv[2])) ? 0 : 1;
}
