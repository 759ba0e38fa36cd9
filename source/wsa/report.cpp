// PLACEHOLDER: to be written (test result report).
#include "wsa_p.h"

void CWsa::saveTestResult() {}
QString CWsa::getKeyboard(const QString&, const QString& text) { return text; }
void CWsa::saveGeneralInfoOfSet(FILE*, int) {}
int GetVersion(const char*, char*, size_t) { return -1; }
