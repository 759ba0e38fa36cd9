// Stand-alone analyzer: the analyzer window without the host.
#include <QApplication>
#include <cstdio>

#include "wsa.h"

int main(int argc, char** argv)
{
    // Console diagnostics should show as they happen, also when the output goes to a log file.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    QApplication a(argc, argv);
    wsaInstallTranslator();
    CWsa w;
    w.setGeometry(0, 60, 800, 400);
    w.show();
    return a.exec();
}
