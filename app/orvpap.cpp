// The wizard.
#include "app/modMain.h"

int main() { return Main(ORV_DOWNLOAD_SERVER); }
