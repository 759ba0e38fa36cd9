// The sweep CSV reader and the assembly of its rows into sweeps on a band's grid: what a
// recording or a live sweep program can hand the engine, well formed or not.
#include <QtTest>
#include <cmath>

#include "bandplan.h"
#include "resample.h"
#include "sweepcsv.h"

namespace
{

const wsa::Band& band24()
{
    return *wsa::findBand(wsa::BandId::Ghz24);
}

// A row of `levels` 1 MHz bins from lowHz, in hackrf_sweep's layout.
std::string row(double lowHz, const std::vector<double>& levels,
                const char* stamp = "2024-03-01, 12:30:05.250113")
{
    std::string text = QString::asprintf("%s, %lld, %lld, 1000000.00, %zu", stamp, qint64(lowHz),
                                         qint64(lowHz + 1e6 * levels.size()), levels.size())
                           .toStdString();
    for (double level : levels)
        text += ", " + std::to_string(level);
    return text;
}

wsa::CsvRow parsed(const std::string& line)
{
    wsa::CsvRow r;
    if (!wsa::parseCsvRow(line.c_str(), r))
        r.levels.clear();
    return r;
}

} // namespace

class TestSweepCsv : public QObject
{
    Q_OBJECT

private slots:
    void readsRow()
    {
        const wsa::CsvRow r = parsed("2024-03-01, 12:30:05.250113, 2435000000, 2440000000, "
                                     "1000000.00, 20, -71.23, -70.91, -44.50, -69.02, -70.38\r");
        QCOMPARE(r.levels.size(), std::size_t(5));
        // 2024-03-01 00:00 UTC is 1709251200 s after the epoch; a leap year's February lies before.
        QCOMPARE(r.seconds, 1709251200.0 + 12 * 3600 + 30 * 60 + 5.250113);
        QCOMPARE(r.lowHz, 2435e6);
        QCOMPARE(r.binHz, 1e6);
        QCOMPARE(r.levels[2], -44.5f);
    }

    void refusesDamage_data()
    {
        QTest::addColumn<QString>("line");
        const QString good =
            "2024-03-01, 12:30:05.25, 2400000000, 2402000000, 1000000.00, 20, -70, -71";
        QTest::newRow("header") << "date, time, hz_low, hz_high, hz_bin_width, num_samples, dB";
        QTest::newRow("cut inside the levels") << good.left(good.size() - 5);
        QTest::newRow("bins do not fill the span") << good + ", -72";
        QTest::newRow("kilo-dB level") << QString(good).replace("-71", "-7100");
        QTest::newRow("nan level") << QString(good).replace("-71", "nan");
        QTest::newRow("infinite frequency") << QString(good).replace("2402000000", "inf");
        QTest::newRow("month 13") << QString(good).replace("-03-", "-13-");
        QTest::newRow("hour 24") << QString(good).replace("12:30", "24:30");
        QTest::newRow("trailing garbage") << good + " x";
        QTest::newRow("zero bin width") << QString(good).replace("1000000.00", "0");
        QTest::newRow("high below low") << QString(good).replace("2402000000", "2300000000");
        QTest::newRow("empty") << QString();
        QString wide = "2024-03-01, 12:30:05, 0, 65537, 1, 20";
        for (int i = 0; i <= wsa::kMaxRowBins; ++i)
            wide += ", 1";
        QTest::newRow("more bins than a row may hold") << wide;
    }

    void refusesDamage()
    {
        QFETCH(QString, line);
        wsa::CsvRow r;
        QVERIFY(!wsa::parseCsvRow(line.toLatin1().constData(), r));
    }

    void levelsRoundTrip()
    {
        const int levels[] = {-200, -95, 0, 50, -2147483647 - 1};
        char text[5 * 13 + 1];
        char* end = wsa::appendLevels(text, levels, 5);
        *end = '\0';
        QCOMPARE(QString(text), QString(", -200, -95, 0, 50, -2147483648"));
    }

    // Bins narrower than the grid's: a cell takes the highest of those centred in it. Wider ones:
    // every cell whose centre they cover takes their level.
    void resamplerNarrowAndWideBins()
    {
        const wsa::SourceGrid& g = band24().grid;
        const double floor = g.floorDbm;
        double out[SA_MAX_SAMPLES];
        {
            wsa::Resampler r(g);
            const float narrow[] = {-80, -40, -60};
            // Three bins of a tenth of a cell, all inside cell 10.
            QVERIFY(r.add(g.binHz(10) - 0.15 * g.stepHz, 0.1 * g.stepHz, narrow, 3));
            r.result(out, -5);
            QCOMPARE(QList<double>(out + 9, out + 12), QList<double>({floor, -45, floor}));
        }
        {
            wsa::Resampler r(g);
            const float wide[] = {-30};
            // One bin ten cells wide over the centres of cells 100 to 109.
            QVERIFY(r.add(g.binHz(100) - g.stepHz / 4, 10 * g.stepHz, wide, 1));
            r.result(out, 0);
            QCOMPARE(QList<double>(out + 99, out + 111),
                     QList<double>{floor} + QList<double>(10, -30) + QList<double>{floor});
        }
    }

    void resamplerIgnoresWildFrequencies()
    {
        const wsa::Band& band = *wsa::findBand(wsa::BandId::Ghz5);
        wsa::Resampler r(band.grid);
        const float levels[] = {-10, -20};
        QVERIFY(!r.add(1e300, 1e299, levels, 2));
        QVERIFY(!r.add(-1e300, 1e6, levels, 2));
        QVERIFY(!r.add(band.grid.startHz, 0, levels, 2));
        QVERIFY(!r.add(band.grid.startHz, 1e6, levels, 0));
        QVERIFY(r.empty());
        // Just past the last cell's upper edge.
        QVERIFY(!r.add(band.grid.highEdgeHz() + 1, 1e3, levels, 2));
        double out[SA_MAX_SAMPLES];
        r.result(out, 0);
        QCOMPARE(QList<double>(out, out + band.grid.raw),
                 QList<double>(band.grid.raw, band.grid.floorDbm));
    }

    // Rows out of frequency order make one sweep; the row that returns to the sweep's first
    // frequency begins the next; the last completes at the end of input.
    void assemblerGroupsRowsIntoSweeps()
    {
        const wsa::SourceGrid& g = band24().grid;
        wsa::SweepAssembler a(g, -20);
        const double low = g.lowEdgeHz();
        QVERIFY(!a.feed(parsed(row(low, {-70, -70}, "2024-03-01, 00:00:01.5"))));
        QVERIFY(!a.feed(parsed(row(low + 10e6, {-30, -70}))));
        QVERIFY(!a.feed(parsed(row(low + 5e6, {-70, -70}))));
        QVERIFY(a.feed(parsed(row(low, {-50, -70}, "2024-03-01, 00:00:02"))));
        double out[SA_MAX_SAMPLES];
        QCOMPARE(a.take(out), 1709251201.5);
        const int signal = int(std::lround((low + 10.5e6 - g.startHz) / g.stepHz));
        QCOMPARE(out[signal], -50.0);
        QCOMPARE(out[0], -90.0);
        QCOMPARE(out[g.shown - 1], double(g.floorDbm)); // never measured
        QVERIFY(a.finish());
        QCOMPARE(a.take(out), 1709251202.0);
        QCOMPARE(out[0], -70.0);
        QCOMPARE(out[signal], double(g.floorDbm));
        QVERIFY(!a.finish());
    }

    void assemblerPassesOverOtherBands()
    {
        const wsa::Band& band = *wsa::findBand(wsa::BandId::Ghz6);
        wsa::SweepAssembler a(band.grid, 0);
        const double outside = band24().grid.startHz;
        // A sweep with nothing in the band completes as no sweep.
        QVERIFY(!a.feed(parsed(row(outside, {-60}))));
        QVERIFY(!a.feed(parsed(row(outside, {-60}))));
        QVERIFY(!a.feed(parsed(row(band.grid.startHz, {-40}))));
        QVERIFY(a.feed(parsed(row(outside, {-60}))));
        double out[SA_MAX_SAMPLES];
        a.take(out);
        QCOMPARE(out[0], -40.0);
        QVERIFY(!a.finish());
    }
};

QTEST_GUILESS_MAIN(TestSweepCsv)
#include "tst_sweepcsv.moc"
