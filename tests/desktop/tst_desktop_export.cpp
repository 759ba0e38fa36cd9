// What the window writes and keeps: the traces as CSV with frequencies in Hz, pictures, the HTML
// report, refusals with a message naming the file, and settings that survive a restart and bad
// values in the file.
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include "acquisition.h"
#include "analysismodel.h"
#include "desktoptestsupport.h"
#include "enginelink.h"
#include "report.h"
#include "traceexport.h"

using namespace desktoptest;

namespace
{

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

// The CSV row of a cell, split at its commas.
QList<QByteArray> csvRow(const QByteArray& csv, int cell)
{
    return csv.split('\n').value(cell + 1).split(',');
}

} // namespace

class TestDesktopExport : public QObject
{
    Q_OBJECT
private:
    const wsa::Band& m_b6 = band(wsa::BandId::Ghz6);
    QTemporaryDir m_dir;

private slots:
    void tracesCsvHasOneRowPerCellInHz()
    {
        SweepStore store(m_b6);
        QCOMPARE(tracesCsv(store).count('\n'), m_b6.grid.shown + 1);
        addSignal(store, 6000e6, -40.25f, -90);
        addSignal(store, 6000e6, -60.75f, -90);
        store.setAveragingLength(10);

        const QByteArray csv = tracesCsv(store);
        QCOMPARE(csv.left(csv.indexOf('\n')),
                 QByteArray("frequency_hz,current_dbm,average_dbm,maximum_dbm,minimum_dbm"));
        QCOMPARE(csv.count('\n'), m_b6.grid.shown + 1);
        QVERIFY(csv.endsWith('\n'));
        const int cell = cellOf(m_b6, 6000e6);
        const QList<QByteArray> row = csvRow(csv, cell);
        QCOMPARE(row.size(), 5);
        QCOMPARE(row[0].toLongLong(), qint64(std::llround(m_b6.grid.binHz(cell))));
        QCOMPARE(QList<double>(
                     {row[1].toDouble(), row[2].toDouble(), row[3].toDouble(), row[4].toDouble()}),
                 QList<double>({-60.75, -50.5, -40.25, -60.75}));
        QCOMPARE(csvRow(csv, 0)[0].toLongLong(), qint64(std::llround(m_b6.grid.startHz)));

        store.resetHolds();
        const QList<QByteArray> held = csvRow(tracesCsv(store), 0);
        QCOMPARE(held.size(), 5);
        QVERIFY(!held[1].isEmpty());
        QVERIFY(held[2].isEmpty() && held[3].isEmpty() && held[4].isEmpty());
    }

    void unwritableFilesAreRefusedWithTheirName()
    {
        SweepStore store(m_b6);
        const QString missing = m_dir.filePath("no/such/dir/traces.csv");
        QString error;
        QVERIFY(!saveTracesCsv(store, missing, &error));
        QVERIFY2(error.contains(missing), qPrintable(error));
        QVERIFY(!QFile::exists(missing));

        error.clear();
        QVERIFY(!savePicture(QImage(), m_dir.filePath("a.png"), &error));
        QVERIFY(error.contains("a.png"));
        QVERIFY(!QFile::exists(m_dir.filePath("a.png")));
        QVERIFY(!savePicture(QImage(4, 4, QImage::Format_RGB32), m_dir.path(), &error));

        const QString ok = m_dir.filePath("traces.csv");
        QVERIFY(saveTracesCsv(store, ok, nullptr));
        QCOMPARE(contents(ok), tracesCsv(store));
    }

    void windowExportsWhatItShows()
    {
        Window t(wsa::BandId::Ghz6);
        t.w.resize(1000, 700);
        addSignal(t.feed, 6500e6, -50, -90);
        QString error;
        const QString png = m_dir.filePath("views.png");
        QVERIFY2(t.w.exportPicture(png, &error), qPrintable(error));
        const QImage image(png);
        QVERIFY(!image.isNull());
        QVERIFY(image.width() >= t.w.spectrum()->width());
        // While paused the export holds the frozen traces, as the picture does.
        t.w.setPaused(true);
        addSignal(t.feed, 6500e6, -20, -90, 1, 1);
        const QString csv = m_dir.filePath("shown.csv");
        QVERIFY(t.w.exportTraces(csv, &error));
        QCOMPARE(csvRow(contents(csv), cellOf(m_b6, 6500e6))[1].toDouble(), -50.0);
    }

    // The report holds the picture, band, source, markers, channels and emitters, with every
    // outside text escaped.
    void reportHoldsWhatTheWindowShows()
    {
        Window t(wsa::BandId::Ghz24);
        InstrumentWindow& w = t.w;
        w.resize(1000, 700);
        addSignal(t.feed, 2437e6, -42.5f, -90);
        w.markers()->place(0, t.feed.shown(), 2437e6);
        w.setSourceName("sim <&>");
        QVERIFY(w.analysis()->takeJson(R"({"type":"analysis","sweeps":5,"channels":[
            {"channel":1,"width_mhz":20,"center_mhz":2412,"occupancy":0.25,"mean_dbm":-80,"max_dbm":-50},
            {"channel":6,"width_mhz":20,"center_mhz":2437,"occupancy":0.05,"mean_dbm":-85,"max_dbm":-42.5}],
            "emitters":[{"kind":"<b>x&y</b>","center_mhz":2437,"width_mhz":20,"active":true}]})"));
        const QString path = m_dir.filePath("report.html");
        QString error;
        QVERIFY2(w.saveReport(path, &error), qPrintable(error));
        const QString html = QString::fromUtf8(contents(path));
        const double markerHz = t.reading().hz;
        QVERIFY(std::abs(markerHz - 2437e6) < t.feed.shown().grid().stepHz);
        for (const QString& expected :
             {QString("<td>2.4 GHz</td>"), QString("<td>sim &lt;&amp;&gt;</td>"),
              QString("&lt;b&gt;x&amp;y&lt;/b&gt;"),
              QString(
                  "<tr><td>1</td><td>2412.0</td><td>25.0</td><td>-80.0</td><td>-50.0</td></tr>"),
              QString("<tr class=\"freest\"><td>6</td>"),
              QString("<tr><td>1</td><td>%1</td><td>6</td><td>-42.5</td>")
                  .arg(markerHz / 1e6, 0, 'f', 3)})
            QVERIFY2(html.contains(expected), qPrintable(expected));
        QVERIFY(!html.contains("<b>x") && !html.contains("sim <"));
        // The picture is embedded whole.
        const QString tag = "data:image/png;base64,";
        const int from = int(html.indexOf(tag)) + int(tag.size());
        QVERIFY(from > tag.size());
        const QByteArray png =
            QByteArray::fromBase64(html.mid(from, html.indexOf('"', from) - from).toLatin1());
        QCOMPARE(QImage::fromData(png, "PNG").size(), w.reportContent().picture.size());

        const QString missing = m_dir.filePath("no/such/report.html");
        QVERIFY(!w.saveReport(missing, &error));
        QVERIFY2(error.contains(missing), qPrintable(error));
        QVERIFY(!saveReport(ReportContent(), m_dir.path(), &error));
        QVERIFY(error.contains(m_dir.path()));
    }

    // Display, averaging, view, source, band, recording wish and markers come back; a
    // recording that has gone does not.
    void settingsSurviveARestart()
    {
        QSettings ini(m_dir.filePath("wsa.ini"), QSettings::IniFormat);
        const double hz = m_b6.grid.binHz(m_b6.grid.shown / 3);
        EngineSetup fallback;
        fallback.source = "sim";
        {
            Window t(wsa::BandId::Ghz6);
            EngineLink link;
            EngineSetup s = fallback;
            s.source = "hackrf";
            s.band = &m_b6;
            s.record = false;
            t.w.attachEngine(&link, s); // no socket directory: no engine, the setup is kept
            DisplaySettings d;
            d.topDbm = -20;
            d.bottomDbm = -100;
            d.channelWidthMHz = 80;
            d.showChannels = false;
            d.traceShown[int(Trace::Minimum)] = true;
            t.w.controls()->setSettings(d);
            t.w.setSettings(t.w.controls()->settings());
            t.w.controls()->setAveraging(25);
            t.w.controls()->setViewMode(ViewMode::Density);
            t.w.markers()->place(2, t.feed.shown(), hz);
            t.w.markers()->setTrace(2, Trace::Maximum);
            t.w.markers()->setActive(2);
            t.w.saveSettings(ini);
        }
        const EngineSetup restored = Acquisition::restoreSetup(ini, fallback);
        QCOMPARE(restored.source, QStringLiteral("hackrf"));
        QCOMPARE(restored.band, &m_b6);
        QVERIFY(!restored.record);
        SweepFeed feed(*restored.band);
        InstrumentWindow again(&feed);
        again.restoreSettings(ini);
        const DisplaySettings& d = again.settings();
        QCOMPARE(QList<double>({d.topDbm, d.bottomDbm, double(d.channelWidthMHz)}),
                 QList<double>({-20, -100, 80}));
        QVERIFY(!d.showChannels && d.traceShown[int(Trace::Minimum)]);
        QCOMPARE(again.controls()->averaging(), 25);
        QCOMPARE(feed.live().averagingLength(), 25);
        QCOMPARE(again.controls()->viewMode(), ViewMode::Density);
        QVERIFY(!again.spectrum()->isVisibleTo(&again));
        QCOMPARE(again.spectrum()->settings(), d);
        QCOMPARE(again.markers()->active(), 2);
        const Marker& m = again.markers()->marker(2);
        QVERIFY(m.on && !again.markers()->marker(0).on);
        QCOMPARE(m.trace, Trace::Maximum);
        QVERIFY(std::abs(m.hz - hz) < m_b6.grid.stepHz);

        ini.setValue("source/key", "replay");
        ini.setValue("source/recording", m_dir.filePath("gone.csv"));
        QCOMPARE(Acquisition::restoreSetup(ini, fallback).source, QStringLiteral("sim"));
    }

    void badValuesInTheSettingsFileAreNotTaken()
    {
        QSettings ini(m_dir.filePath("bad.ini"), QSettings::IniFormat);
        ini.setValue("window/viewMode", 99);
        ini.setValue("window/geometry", QByteArray("garbage"));
        ini.setValue("display/topDbm", "loud");
        ini.setValue("display/bottomDbm", 1e9);
        ini.setValue("display/channelWidthMHz", 33);
        ini.setValue("display/averaging", -5);
        Window t(wsa::BandId::Ghz24);
        InstrumentWindow& w = t.w;
        w.restoreSettings(ini);
        QCOMPARE(w.controls()->viewMode(), ViewMode::All);
        QVERIFY(w.settings().topDbm > w.settings().bottomDbm);
        QVERIFY(w.settings().bottomDbm >= SweepStore::kDensityBottomDbm);
        QVERIFY(w.settings().topDbm <= SweepStore::kDensityTopDbm);
        QCOMPARE(w.settings().channelWidthMHz, 20);
        QCOMPARE(w.controls()->averaging(), 1);
        QVERIFY(!render(w, QSize(800, 600), 1).isNull());
    }
};

QTEST_MAIN(TestDesktopExport)
#include "tst_desktop_export.moc"
