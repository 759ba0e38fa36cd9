// The plug-in library as the host sees it: exports, identity and the start/stop state machine.
#include <QApplication>
#include <QtTest>

#include "halbrin_sa.h"
#include "utilinterface.h"
#include "wsatestsupport.h"

class TestPlugin : public QObject
{
    Q_OBJECT
    QPluginLoader m_loader{QStringLiteral(WSA_PLUGIN_BIN)};
    QLibrary m_library{QStringLiteral(WSA_PLUGIN_BIN)};
    UtilInterface* m_util = nullptr;

private slots:
    void initTestCase()
    {
        QVERIFY2(m_loader.load(), qPrintable(m_loader.errorString()));
        m_util = qobject_cast<UtilInterface*>(m_loader.instance());
        QVERIFY(m_util);
    }

    void identityAndExports()
    {
        QObject* root = m_loader.instance();
        QCOMPARE(m_util->getPluginID(), QStringLiteral("com.halbrininc.CommonUtil.wsaPlugin"));
        QCOMPARE(m_util->getPluginName(), QStringLiteral("wsa"));
        QCOMPARE(m_util->getPluginVersion(), QStringLiteral("1.0"));
        QCOMPARE(m_util->getPluginBuilder(), QStringLiteral("HALBRIN"));
        QCOMPARE(root->qt_metacast("wsaPlugin"), static_cast<void*>(root));
        // The interface is the second base: its pointer is not the QObject's.
        QCOMPARE(root->qt_metacast("UtilInterface"), static_cast<void*>(m_util));
        QCOMPARE(root->qt_metacast(UtilInterface_iid), static_cast<void*>(m_util));
        QVERIFY(m_util->bkgRun(nullptr));

        const char record[] = "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.8.4\ndebug=true\n"
                              "buildkey=i386 linux g++-4 full-config";
        auto query = reinterpret_cast<const char* (*)()>(
            m_library.resolve("qt_plugin_query_verification_data"));
        QVERIFY(query);
        QCOMPARE(query(), record);
        // The section as stored in the built file, NUL included.
        QTemporaryDir dir;
        QCOMPARE(QProcess::execute("objcopy", {"-O", "binary", "--only-section=.qtplugin",
                                               WSA_PLUGIN_BIN, dir.filePath("section")}),
                 0);
        QFile section(dir.filePath("section"));
        QVERIFY(section.open(QIODevice::ReadOnly));
        QCOMPARE(section.readAll(), QByteArray(record, sizeof record));
    }

    void lifeCycle()
    {
        wsatest::AnalyzerEnv env;
        // Nothing to act on before the first start.
        QVERIFY(!m_util->stop());
        m_util->show();
        m_util->hide();
        m_util->update();
        QVERIFY(!m_util->getObject() && QApplication::topLevelWidgets().isEmpty());

        QVERIFY(m_util->start(nullptr) && m_util->start(nullptr));
        QPointer<QWidget> first = qobject_cast<QWidget*>(m_util->getObject());
        QVERIFY(first && first->isVisible());
        QCOMPARE(env.engineLaunches().size(), 1);

        // Terminated: hidden and not stoppable; start shows the same window again.
        m_util->terminate();
        QVERIFY(!first->isVisible() && !m_util->stop());
        QVERIFY(m_util->start(nullptr) && m_util->getObject() == first && first->isVisible());

        QVERIFY(m_util->stop() && first.isNull() && !m_util->getObject());
        QVERIFY(m_util->start(nullptr) && m_util->getObject());
        QCOMPARE(env.engineLaunches().size(), 2);
        QVERIFY(m_util->stop());
    }

    // The host ends the plug-in from a timer while a modal window of the analyzer is open: no
    // crash (the sanitizer build checks every access), and the analyzer's destructor runs.
    void hostEndsUnderModal_data()
    {
        QTest::addColumn<QString>("opener");
        QTest::addColumn<QString>("ending");
        for (const char* opener : {"configured", "no probe", "keypad", "failed start"})
            QTest::addRow("%s, stop", opener) << opener << "stop";
        QTest::newRow("configured, window deleted") << "configured"
                                                    << "delete";
        QTest::newRow("keypad, window deleted") << "keypad"
                                                << "delete";
    }

    void hostEndsUnderModal()
    {
        QFETCH(QString, opener);
        QFETCH(QString, ending);
        wsatest::AnalyzerEnv env;
        stSweep record = wsatest::makeMessage(opener == "no probe" ? char(SA_MSG_NO_DEVICE)
                                                                   : char(SA_MSG_CONFIGURED));
        QFile records(env.path() + "/records");
        QVERIFY(records.open(QIODevice::WriteOnly));
        if (opener != "keypad")
            records.write(reinterpret_cast<const char*>(&record), SA_RECORD_SIZE);
        records.close();
        qputenv("FAKE_ENGINE_RECORDS", QFile::encodeName(records.fileName()));
        if (opener == "failed start")
            qputenv("WSA_ENGINE_PATH", "/nonexistent/wsa_raw");

        QString modalSeen;
        bool stopped = false;
        const QString out = wsatest::captureStdout([&] {
            QVERIFY(m_util->start(nullptr));
            QPointer<QWidget> window = qobject_cast<QWidget*>(m_util->getObject());
            wsatest::onNextModal([&](QWidget* modal) {
                modalSeen = modal->metaObject()->className();
                if (ending == "stop")
                    stopped = m_util->stop();
                else
                    delete window.data();
            });
            if (opener == "keypad") {
                // Posted, as the host's event loop delivers keys: the press opens the keypad and
                // never returns into the test's stack while the window goes.
                QWidget* analyzer = nullptr;
                const auto children = window->findChildren<QWidget*>();
                for (QWidget* child : children)
                    if (qstrcmp(child->metaObject()->className(), "CWsa") == 0)
                        analyzer = child;
                QVERIFY(analyzer);
                QCoreApplication::postEvent(
                    analyzer, new QKeyEvent(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier));
            }
            QTRY_VERIFY_WITH_TIMEOUT(window.isNull(), 5000);
        });
        qunsetenv("FAKE_ENGINE_RECORDS");
        qputenv("WSA_ENGINE_PATH", WSA_FAKE_ENGINE_BIN);
        QCOMPARE(modalSeen, opener == "keypad" ? QString("CDialog") : QString("CMessageBox"));
        QCOMPARE(stopped, ending == "stop");
        QVERIFY2(out.contains("~CWsa\n"), qPrintable(out));
        QVERIFY(!m_util->getObject() && !m_util->stop());
        QCOMPARE(QApplication::topLevelWidgets().size(), 0);
        // And the plug-in starts again as after any stop.
        QVERIFY(m_util->start(nullptr) && m_util->getObject());
        QVERIFY(m_util->stop());
    }

    // Last: it destroys the loader's root object.
    void instanceIsGuarded()
    {
        auto instance = reinterpret_cast<QObject* (*)()>(m_library.resolve("qt_plugin_instance"));
        QVERIFY(instance);
        QObject* root = instance();
        QVERIFY(root == m_loader.instance() && instance() == root);
        root->setObjectName("old");
        delete root;
        QObject* fresh = instance();
        QVERIFY(fresh && fresh->objectName().isEmpty() && instance() == fresh);
    }
};

QTEST_MAIN(TestPlugin)
#include "tst_plugin.moc"
