// The engine's settings: every variable it reads is in its table and in the documentation, and
// every value outside a variable's range is refused with a line and leaves the default.
#include <QtTest>
#include <cstdlib>
#include <unistd.h>

#include "options.h"
#include "registry.h"

namespace
{

struct Parsed {
    Options options;
    QString said; // on stderr
};

// Runs parseOptions on `args` with only the WSA_* variable of `setting` ("NAME=value") set.
Parsed parseWith(const QStringList& args, const QString& setting = {})
{
    for (const Variable& v : allVariables())
        unsetenv(v.name);
    const QByteArray name = setting.section('=', 0, 0).toLatin1();
    if (!setting.isEmpty())
        setenv(name, setting.section('=', 1).toLatin1(), 1);
    std::vector<QByteArray> storage{"wsa_raw"};
    std::vector<char*> argv;
    for (const QString& a : args)
        storage.push_back(a.toLatin1());
    for (QByteArray& a : storage)
        argv.push_back(a.data());
    QTemporaryFile err;
    err.open();
    std::fflush(stderr);
    const int saved = dup(2);
    dup2(err.handle(), 2);
    Parsed parsed{parseOptions(int(argv.size()), argv.data()), {}};
    std::fflush(stderr);
    dup2(saved, 2);
    close(saved);
    err.seek(0);
    parsed.said = err.readAll();
    unsetenv(name);
    return parsed;
}

} // namespace

class TestEngineOptions : public QObject
{
    Q_OBJECT

private slots:
    // Every variable and every source in the README, the manual page and the help, which lists the
    // sources in a column of their own.
    void everyVariableDocumented_data()
    {
        QTest::addColumn<QString>("file"); // empty: --help
        QTest::addColumn<QString>("source");
        QTest::newRow("README") << QString("README.md") << "%1";
        QTest::newRow("manual page") << QString("packaging/wsa_raw.1.in") << "%1";
        QTest::newRow("help") << QString() << "  %1 ";
    }
    void everyVariableDocumented()
    {
        QFETCH(QString, file);
        QFETCH(QString, source);
        QFile f(QString(WSA_SOURCE_DIR) + "/" + file);
        QVERIFY(file.isEmpty() ? parseWith({"--help"}).options.help : f.open(QIODevice::ReadOnly));
        const QString text = file.isEmpty() ? QString::fromStdString(helpText()) : f.readAll();
        QStringList missing;
        for (const Variable& v : allVariables())
            if (!text.contains(QRegularExpression(QString("\\b%1\\b").arg(v.name))))
                missing << v.name;
        for (const SourceEntry& s : sourceTable())
            if (!text.contains(source.arg(s.name)))
                missing << s.name;
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(", ")));
    }

    // At each end of its range a number is taken; just beyond, far beyond, tiny, huge and not a
    // number at all it is refused with one line naming the variable, and the setting stays unset.
    void numbersAtAndBeyondBounds()
    {
        int checked = 0;
        for (const Variable& v : allVariables()) {
            if (v.kind != Variable::Kind::Number && v.kind != Variable::Kind::Count)
                continue;
            const bool whole = v.kind == Variable::Kind::Count;
            const double nudge = whole ? 1 : std::max(1e-9, std::abs(v.min) * 1e-6);
            const auto text = [](double n) { return QString::number(n, 'g', 17); };
            QStringList good{text(v.min), text(v.max)};
            QStringList bad = QString("1e300|nan|inf|-inf|12abc| |0x").split('|');
            bad << text(v.min - nudge) << text(v.max + std::max(1.0, v.max * 1e-6));
            if (v.min > 0 || whole) // else 1e-300 lies inside a range reaching down to 0
                bad << "1e-300";
            if (v.zeroAllowed)
                good << "0";
            else if (v.min > 0)
                bad << "0";
            if (whole)
                bad += {"1.5", "99999999999999999999999"};
            for (const QString& value : good) {
                const Parsed p = parseWith({}, QString(v.name) + "=" + value);
                QVERIFY2(p.options.settings.has(v.name) && p.said.isEmpty(),
                         qPrintable(QString("%1=%2: %3").arg(v.name, value, p.said)));
            }
            for (const QString& value : bad) {
                const Parsed p = parseWith({}, QString(v.name) + "=" + value);
                QVERIFY2(!p.options.settings.has(v.name), qPrintable(v.name + ("=" + value)));
                QCOMPARE(p.said.count('\n'), 1);
                QVERIFY2(p.said.contains(v.name) && p.said.contains(v.accepted().c_str()),
                         qPrintable(p.said));
            }
            ++checked;
        }
        QVERIFY(checked >= 10);
    }

    void otherKindsRefuseNonsense()
    {
        for (const QString setting :
             {"WSA_DETECTOR=max", "WSA_DETECTOR=peak|average", "WSA_SIM_NO_PROBE=yes",
              "WSA_RECORD_ONLY=2", "WSA_SIM_SEED=-1", "WSA_SIM_SEED=0x1g",
              "WSA_SIM_SEED=18446744073709551616"}) {
            const Parsed p = parseWith({}, setting);
            QVERIFY(!p.options.settings.has(setting.section('=', 0, 0).toStdString()));
            QCOMPARE(p.said.count('\n'), 1);
        }
        QCOMPARE(parseWith({}, "WSA_SIM_SEED=0x10").options.settings.seed("WSA_SIM_SEED"), 16u);
        QCOMPARE(parseWith({}).options.settings.seed("WSA_SIM_SEED"), 20240611u);
        QCOMPARE(parseWith({}, "WSA_DETECTOR=average").options.settings.text("WSA_DETECTOR"),
                 std::string("average"));
    }

    // -r takes every band of the plan by its engine number, in one word or two; anything else is
    // refused with a line and the first band is kept.
    void bandsFromThePlan()
    {
        for (const wsa::Band& band : wsa::allBands()) {
            const QString n = QString::number(band.engineNumber);
            QCOMPARE(parseWith({"-r " + n}).options.band, &band);
            QCOMPARE(parseWith({"-r", n}).options.band, &band);
        }
        for (const QString value : {"0", "4", "2.4", "", "-1", "22"}) {
            const Parsed p = parseWith({"-r", value});
            QCOMPARE(p.options.band, &wsa::allBands().front());
            QVERIFY2(p.said.contains("unknown band"), qPrintable(value + ": " + p.said));
        }
    }

    // A source reading a variable that no table holds would read something undocumented; a source
    // is found by its exact name, and the list of names reads "a, b or c".
    void undeclaredVariableIsAnError()
    {
        QCOMPARE(QString::fromStdString(sourceNames()).count(','), int(sourceTable().size()) - 2);
        QVERIFY(findSource("sim") && !findSource("SIM") && !findSource(""));
        Settings s;
        QVERIFY_THROWS_EXCEPTION(std::logic_error, s.number("WSA_UNDECLARED"));
        QVERIFY_THROWS_EXCEPTION(std::logic_error, s.text("WSA_UNDECLARED"));
    }
};

QTEST_GUILESS_MAIN(TestEngineOptions)
#include "tst_engine_options.moc"
