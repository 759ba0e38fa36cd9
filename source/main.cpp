// Stand-alone analyzer: the analyzer window without the host.
#include <QApplication>

#include "wsa.h"

int main(int argc, char** argv)
{
    QApplication a(argc, argv);
    wsaInstallTranslator();
    CWsa w;
    w.setGeometry(0, 60, 800, 400);
    w.show();
    return a.exec();
}
