// PLACEHOLDER: to be written (engine link and sweep messages).
#include "wsa_p.h"

void CWsa::wsaDataParse() {}
