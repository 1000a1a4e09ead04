// The wizard of a demo installation: it downloads from the server that paptool runs.
#include "app/modMain.h"

int main() { return Main(ORV_DOWNLOAD_SERVER); }
