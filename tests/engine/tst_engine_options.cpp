// The engine's settings: every variable it reads is in its table and in the documentation, and
// every value outside a variable's range is refused with a line and leaves the default.
#include <QtTest>
#include <cstdlib>
#include <unistd.h>

#include "options.h"
#include "registry.h"

namespace
{

// Runs parseOptions on `args` with only `name`=`value` of the WSA_* variables set; returns the
// options and what it wrote to stderr.
Options parseWith(const QStringList& args, const char* name = nullptr, const QString& value = {},
                  QString* complaints = nullptr)
{
    for (const Variable& v : allVariables())
        unsetenv(v.name);
    if (name)
        setenv(name, value.toLatin1().constData(), 1);
    std::vector<QByteArray> storage{"wsa_raw"};
    for (const QString& a : args)
        storage.push_back(a.toLatin1());
    std::vector<char*> argv;
    for (QByteArray& a : storage)
        argv.push_back(a.data());

    QTemporaryFile err;
    err.open();
    std::fflush(stderr);
    const int saved = dup(2);
    dup2(err.handle(), 2);
    Options options = parseOptions(int(argv.size()), argv.data());
    std::fflush(stderr);
    dup2(saved, 2);
    close(saved);
    if (complaints) {
        err.seek(0);
        *complaints = QString(err.readAll());
    }
    if (name)
        unsetenv(name);
    return options;
}

QString numberText(double v)
{
    return QString::number(v, 'g', 17);
}

} // namespace

class TestEngineOptions : public QObject
{
    Q_OBJECT

private slots:
    void everyVariableDocumented_data();
    void everyVariableDocumented();
    void numbersAtAndBeyondBounds();
    void otherKindsRefuseNonsense();
    void bandsFromThePlan();
    void undeclaredVariableIsAnError();
};

// Every variable and every source in the README, the manual page and the help, which lists the
// sources in a column of their own.
void TestEngineOptions::everyVariableDocumented_data()
{
    QTest::addColumn<QString>("file"); // empty: --help
    QTest::addColumn<QString>("source");
    QTest::newRow("README") << "README.md"
                            << "%1";
    QTest::newRow("manual page") << "packaging/wsa_raw.1.in"
                                 << "%1";
    QTest::newRow("help") << ""
                          << "  %1 ";
}

void TestEngineOptions::everyVariableDocumented()
{
    QFETCH(QString, file);
    QFETCH(QString, source);
    QFile f(QString(WSA_SOURCE_DIR) + "/" + file);
    QVERIFY(file.isEmpty() ? parseWith({"--help"}).help : f.open(QIODevice::ReadOnly));
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
void TestEngineOptions::numbersAtAndBeyondBounds()
{
    int checked = 0;
    for (const Variable& v : allVariables()) {
        if (v.kind != Variable::Kind::Number && v.kind != Variable::Kind::Count)
            continue;
        const bool whole = v.kind == Variable::Kind::Count;
        const double nudge = whole ? 1 : std::max(1e-9, std::abs(v.min) * 1e-6);
        QStringList good{numberText(v.min), numberText(v.max)};
        QStringList bad{numberText(v.min - nudge),
                        numberText(v.max + std::max(1.0, v.max * 1e-6)),
                        "1e-300",
                        "1e300",
                        "nan",
                        "inf",
                        "-inf",
                        "12abc",
                        " ",
                        "0x"};
        if (v.zeroAllowed)
            good << "0";
        else if (v.min > 0)
            bad << "0";
        if (whole)
            bad << "1.5"
                << "99999999999999999999999";
        for (const QString& value : good) {
            QString said;
            const Options o = parseWith({}, v.name, value, &said);
            QVERIFY2(o.settings.has(v.name) && said.isEmpty(),
                     qPrintable(QString("%1=%2: %3").arg(v.name, value, said)));
        }
        for (const QString& value : bad) {
            if (value == "1e-300" && v.min <= 0 && !whole)
                continue; // inside a range reaching down to 0
            QString said;
            const Options o = parseWith({}, v.name, value, &said);
            QVERIFY2(!o.settings.has(v.name), qPrintable(QString("%1=%2").arg(v.name, value)));
            QCOMPARE(said.count('\n'), 1);
            QVERIFY2(said.contains(v.name) && said.contains(v.accepted().c_str()),
                     qPrintable(said));
        }
        ++checked;
    }
    QVERIFY(checked >= 10);
}

void TestEngineOptions::otherKindsRefuseNonsense()
{
    const QList<QPair<const char*, QString>> bad{{"WSA_DETECTOR", "max"},
                                                 {"WSA_DETECTOR", "peak|average"},
                                                 {"WSA_SIM_NO_PROBE", "yes"},
                                                 {"WSA_RECORD_ONLY", "2"},
                                                 {"WSA_SIM_SEED", "-1"},
                                                 {"WSA_SIM_SEED", "0x1g"},
                                                 {"WSA_SIM_SEED", "18446744073709551616"}};
    for (const auto& [name, value] : bad) {
        QString said;
        QVERIFY(!parseWith({}, name, value, &said).settings.has(name));
        QCOMPARE(said.count('\n'), 1);
    }
    QCOMPARE(parseWith({}, "WSA_SIM_SEED", "0x10").settings.seed("WSA_SIM_SEED"), 16u);
    QCOMPARE(parseWith({}).settings.seed("WSA_SIM_SEED"), 20240611u);
    QCOMPARE(parseWith({}, "WSA_DETECTOR", "average").settings.text("WSA_DETECTOR"),
             std::string("average"));
}

// -r takes every band of the plan by its engine number, in one word or two; anything else is
// refused with a line and the first band is kept.
void TestEngineOptions::bandsFromThePlan()
{
    for (const wsa::Band& band : wsa::allBands()) {
        const QString n = QString::number(band.engineNumber);
        QCOMPARE(parseWith({"-r " + n}).band, &band);
        QCOMPARE(parseWith({"-r", n}).band, &band);
    }
    for (const QString& value : QStringList{"0", "4", "2.4", "", "-1", "22"}) {
        QString said;
        const Options o = parseWith({"-r", value}, nullptr, {}, &said);
        QCOMPARE(o.band, &wsa::allBands().front());
        QVERIFY2(said.contains("unknown band"), qPrintable(value + ": " + said));
    }
}

// A source reading a variable that no table holds would read something undocumented; a source
// is found by its exact name, and the list of names reads "a, b or c".
void TestEngineOptions::undeclaredVariableIsAnError()
{
    QCOMPARE(QString::fromStdString(sourceNames()).count(','), int(sourceTable().size()) - 2);
    QVERIFY(findSource("sim") && !findSource("SIM") && !findSource(""));
    Settings s;
    QVERIFY_THROWS_EXCEPTION(std::logic_error, s.number("WSA_UNDECLARED"));
    QVERIFY_THROWS_EXCEPTION(std::logic_error, s.text("WSA_UNDECLARED"));
}

QTEST_GUILESS_MAIN(TestEngineOptions)
#include "tst_engine_options.moc"
