// PLACEHOLDER: to be written (engine process control).
#include "wsa_p.h"

stModuleImage moduleImage[1] = {{"/usr/local/tessa/bin/wsa_raw", "wsa_raw"}};
int s_band = 0;
int mainEngineSock = -1;
int sockFd = -1;
void startAppEngines() {}
void stopAppEngines() {}
int CWsa::RestartAppEngines() { return 0; }
