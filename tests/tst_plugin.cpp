// The plug-in library as the host sees it: exports, identity and the start/stop state machine.
#include <QFile>
#include <QLibrary>
#include <QPluginLoader>
#include <QPointer>
#include <QtTest>
#include <cstring>
#include <elf.h>

#include "cutilwindow.h"
#include "utilinterface.h"
#include "wsatestsupport.h"

namespace
{

const char kVerification[] = "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.8.4\ndebug=true\n"
                             "buildkey=i386 linux g++-4 full-config";

// Contents of the named section of an ELF file, read through the section headers.
template <typename Ehdr, typename Shdr>
QByteArray elfSection(const QByteArray& file, const char* name)
{
    if (size_t(file.size()) < sizeof(Ehdr))
        return {};
    Ehdr eh;
    std::memcpy(&eh, file.constData(), sizeof eh);
    auto header = [&](int i) {
        Shdr sh{};
        const size_t at = eh.e_shoff + size_t(i) * eh.e_shentsize;
        if (at + sizeof sh <= size_t(file.size()))
            std::memcpy(&sh, file.constData() + at, sizeof sh);
        return sh;
    };
    const Shdr names = header(eh.e_shstrndx);
    for (int i = 0; i < eh.e_shnum; ++i) {
        const Shdr sh = header(i);
        if (sh.sh_name >= names.sh_size || names.sh_offset + sh.sh_name >= size_t(file.size()))
            continue;
        if (qstrcmp(file.constData() + names.sh_offset + sh.sh_name, name) == 0)
            return file.mid(qsizetype(sh.sh_offset), qsizetype(sh.sh_size));
    }
    return {};
}

int analyzersIn(QObject* window)
{
    int n = 0;
    for (QObject* child : window->children())
        n += qstrcmp(child->metaObject()->className(), "CWsa") == 0;
    return n;
}

} // namespace

class TestPlugin : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void identityAndCasts();
    void lifeCycle();
    void instanceIsGuarded();
    void verificationRecord();

private:
    QPluginLoader m_loader{QStringLiteral(WSA_PLUGIN_BIN)};
    UtilInterface* m_util = nullptr;
};

void TestPlugin::initTestCase()
{
    QVERIFY2(m_loader.load(), qPrintable(m_loader.errorString()));
    m_util = qobject_cast<UtilInterface*>(m_loader.instance());
    QVERIFY(m_util);
}

void TestPlugin::identityAndCasts()
{
    QObject* root = m_loader.instance();
    QCOMPARE(m_util->getPluginID(), QStringLiteral("com.halbrininc.CommonUtil.wsaPlugin"));
    QCOMPARE(m_util->getPluginName(), QStringLiteral("wsa"));
    QCOMPARE(m_util->getPluginVersion(), QStringLiteral("1.0"));
    QCOMPARE(m_util->getPluginBuilder(), QStringLiteral("HALBRIN"));
    QCOMPARE(root->metaObject()->className(), "wsaPlugin");
    QCOMPARE(root->qt_metacast("wsaPlugin"), static_cast<void*>(root));
    QCOMPARE(root->qt_metacast("UtilInterface"), static_cast<void*>(m_util));
    QCOMPARE(root->qt_metacast(UtilInterface_iid), static_cast<void*>(m_util));
    QVERIFY(static_cast<void*>(m_util) != static_cast<void*>(root)); // the second base
    QVERIFY(!root->qt_metacast("CWsa"));
    QVERIFY(m_util->bkgRun(nullptr));
    QWidget someParent;
    QVERIFY(m_util->bkgRun(&someParent));
}

void TestPlugin::lifeCycle()
{
    wsatest::AnalyzerEnv env;
    // Nothing to act on before the first start.
    QVERIFY(!m_util->stop());
    m_util->show();
    m_util->hide();
    m_util->update();
    QVERIFY(!m_util->getObject());

    QVERIFY(m_util->start(nullptr));
    QVERIFY(m_util->start(nullptr));
    QPointer<QObject> first = m_util->getObject();
    QVERIFY(first);
    auto* window = qobject_cast<CUtilWindow*>(first.data());
    QVERIFY(window && window->isVisible());
    QCOMPARE(analyzersIn(window), 1);
    QCOMPARE(qstrcmp(window->centralWidget()->metaObject()->className(), "CWsa"), 0);
    QCOMPARE(env.engineLaunches().size(), 1);

    m_util->hide();
    QVERIFY(!window->isVisible());
    m_util->show();
    QVERIFY(window->isVisible());

    // Terminated: the same window comes back, nothing new is built.
    m_util->terminate();
    QVERIFY(!m_util->stop());
    QVERIFY(m_util->start(nullptr));
    QCOMPARE(m_util->getObject(), first.data());
    QVERIFY(window->isVisible());
    QCOMPARE(env.engineLaunches().size(), 1);

    QString out = wsatest::captureStdout([this] { QVERIFY(m_util->stop()); });
    QVERIFY(first.isNull());
    QVERIFY(!m_util->getObject());
    QVERIFY(out.contains("~CWsa\n"));

    QVERIFY(m_util->start(nullptr));
    QVERIFY(m_util->getObject());
    QCOMPARE(env.engineLaunches().size(), 2);
    out = wsatest::captureStdout([this] { QVERIFY(m_util->stop()); });
    QVERIFY(out.contains("~CWsa\n"));
}

void TestPlugin::instanceIsGuarded()
{
    QLibrary library(QStringLiteral(WSA_PLUGIN_BIN));
    using Instance = QObject* (*)();
    auto instance = reinterpret_cast<Instance>(library.resolve("qt_plugin_instance"));
    QVERIFY(instance);
    QObject* root = instance();
    QCOMPARE(instance(), root);
    QCOMPARE(root, m_loader.instance());

    root->setObjectName("old");
    delete root;
    QObject* fresh = instance();
    QVERIFY(fresh);
    QCOMPARE(fresh->objectName(), QString());
    QCOMPARE(instance(), fresh);
    m_util = qobject_cast<UtilInterface*>(fresh);
    QVERIFY(m_util && !m_util->getObject());
}

void TestPlugin::verificationRecord()
{
    QLibrary library(QStringLiteral(WSA_PLUGIN_BIN));
    using Query = const char* (*)();
    auto query = reinterpret_cast<Query>(library.resolve("qt_plugin_query_verification_data"));
    QVERIFY(query);
    QCOMPARE(query(), kVerification);
    QCOMPARE(std::strlen(query()), size_t(98));

    QFile file(QStringLiteral(WSA_PLUGIN_BIN));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray image = file.readAll();
    QVERIFY(image.startsWith(ELFMAG));
    const QByteArray section = image[EI_CLASS] == ELFCLASS64
                                   ? elfSection<Elf64_Ehdr, Elf64_Shdr>(image, ".qtplugin")
                                   : elfSection<Elf32_Ehdr, Elf32_Shdr>(image, ".qtplugin");
    QCOMPARE(section.size(), 99);
    QCOMPARE(section, QByteArray(kVerification, sizeof kVerification));
}

QTEST_MAIN(TestPlugin)
#include "tst_plugin.moc"
