// wsa-analyze: recordings read into the analysis, the band told from the file, and a clear
// refusal (exit 2, one line) for whatever cannot be used.
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>
#include <vector>

#include "offline.h"
#include "sweepcsv.h"
#include "world.h"

namespace
{

// A recording as our recorder writes it (one row a sweep over the grid), or as a sweep program
// does (`chunkBins` bins a row, several rows a sweep).
QByteArray recording(const wsa::Band& band, const std::vector<wsa::TruthEmitter>& truth, int sweeps,
                     int chunkBins = 0)
{
    wsa::World world(band, 21, truth);
    const wsa::SourceGrid& g = band.grid;
    const int chunk = chunkBins > 0 ? chunkBins : g.shown;
    std::vector<float> s(std::size_t(g.shown));
    std::vector<int> levels(std::size_t(g.shown));
    std::vector<char> text(std::size_t(13 * chunk + 200));
    QByteArray out = "# a comment line, passed over\n";
    for (int k = 0; k < sweeps; ++k) {
        world.sweep(k * 0.05, s.data());
        for (int i = 0; i < g.shown; ++i)
            levels[std::size_t(i)] = int(std::lround(s[std::size_t(i)]));
        for (int first = 0; first + chunk <= g.shown; first += chunk) {
            const double low = g.lowEdgeHz() + first * g.stepHz;
            char* p = text.data() + std::snprintf(text.data(), 200, "2024-03-01, 12:%02d:%02d.%06d, %.0f, %.0f, %.2f, %d",
                                                  k / 1200, (k / 20) % 60, (k % 20) * 50000, low,
                                                  low + chunk * g.stepHz, g.stepHz, chunk);
            p = wsa::appendLevels(p, levels.data() + first, chunk);
            *p++ = '\n';
            out.append(text.data(), int(p - text.data()));
        }
    }
    return out;
}

QString write(const QTemporaryDir& dir, const QString& name, const QByteArray& data)
{
    QFile f(dir.filePath(name));
    if (!f.open(QIODevice::WriteOnly) || f.write(data) != data.size())
        qWarning("cannot write %s", qPrintable(f.fileName()));
    return f.fileName();
}

struct Run {
    int code;
    QByteArray out;
    QByteArray err;
};

Run analyze(const QStringList& args)
{
    QProcess p;
    p.start(WSA_ANALYZE_BIN, args);
    p.waitForFinished(60000);
    return {p.exitCode(), p.readAllStandardOutput(), p.readAllStandardError()};
}

wsa::TruthEmitter video()
{
    wsa::TruthEmitter e;
    e.kind = wsa::EmitterKind::AvTransmitter;
    e.centerMHz = 2432;
    e.widthMHz = 18;
    e.stopS = 1e9;
    e.levelDbm = -65;
    return e;
}

} // namespace

class TestAnalysisOffline : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;

private slots:
    void recordingIsAnalysed()
    {
        const wsa::Band& band = *wsa::findBand("2g4");
        const QString path = write(dir, "wsa-20240301-123005-2g4.csv", recording(band, {video()}, 200));
        QCOMPARE(wsa::guessBand(path.toStdString()), &band);
        wsa::Analyzer analyzer(band);
        wsa::ReadCounts counts;
        std::string error;
        QVERIFY(wsa::analyzeFile(path.toStdString(), 0, analyzer, counts, error));
        QCOMPARE(counts.rows, 200L);
        QCOMPARE(counts.rejected, 1L);
        QCOMPARE(counts.sweeps, 200L);
        QCOMPARE(analyzer.sweeps(), 200L);
        QVERIFY(std::fabs(analyzer.seconds() - 199 * 0.05) < 1e-3);
        QCOMPARE(int(analyzer.ended().size()), 1);
        QCOMPARE(int(analyzer.ended()[0].kind), int(wsa::EmitterKind::AvTransmitter));
    }

    void rowsOfASweepProgramAreAssembled()
    {
        // Rows of 47 bins (about 10 MHz) each, nine a sweep; no band in the name.
        const wsa::Band& band = *wsa::findBand("2g4");
        const QString path = write(dir, "capture.csv", recording(band, {video()}, 100, 47));
        QCOMPARE(wsa::guessBand(path.toStdString()), &band);
        wsa::Analyzer analyzer(band);
        wsa::ReadCounts counts;
        std::string error;
        QVERIFY(wsa::analyzeFile(path.toStdString(), 0, analyzer, counts, error));
        QCOMPARE(counts.rows, 900L);
        QCOMPARE(counts.sweeps, 100L);
        QCOMPARE(int(analyzer.ended().size()), 1);
    }

    void bandFromTheDataWhenTheNameSaysNothing()
    {
        const QString five = write(dir, "five.csv", recording(*wsa::findBand("5g"), {}, 3));
        QCOMPARE(wsa::guessBand(five.toStdString()), wsa::findBand("5g"));
        const QString text = write(dir, "notes.csv", "date, time, hz_low\nnothing here\n");
        QCOMPARE(wsa::guessBand(text.toStdString()), nullptr);
    }

    void unusableFilesAreRefusedInOneLine_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("says");
        write(dir, "empty.csv", "");
        write(dir, "wsa-6g.csv", recording(*wsa::findBand("5g"), {}, 3));
        QTest::newRow("missing") << QStringList{dir.filePath("nope.csv")} << "No such file";
        QTest::newRow("directory") << QStringList{dir.path()} << "not a regular file";
        QTest::newRow("empty") << QStringList{dir.filePath("empty.csv")} << "no sweep rows of a known band";
        QTest::newRow("other band") << QStringList{"--band", "2g4", dir.filePath("wsa-6g.csv")}
                                    << "no sweep in the 2.4 GHz band";
        QTest::newRow("band word") << QStringList{"--band", "7g", dir.filePath("empty.csv")} << "unknown band 7g";
        QTest::newRow("offset") << QStringList{"--level-offset", "x", dir.filePath("empty.csv")} << "not a number";
        QTest::newRow("no file") << QStringList{} << "usage";
        QTest::newRow("two files") << QStringList{"a.csv", "b.csv"} << "usage";
    }

    void unusableFilesAreRefusedInOneLine()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, says);
        const Run r = analyze(args);
        QCOMPARE(r.code, 2);
        QVERIFY(r.out.isEmpty());
        QVERIFY2(r.err.contains(says.toUtf8()), r.err.constData());
        QCOMPARE(r.err.count('\n'), 1);
    }

    void jsonLinesWithTheLevelOffset()
    {
        const QString path = write(dir, "wsa-20240301-123005-2g4.csv", recording(*wsa::findBand("2g4"), {video()}, 200));
        const Run plain = analyze({"--json", path});
        const Run lower = analyze({"--json", "--level-offset", "-10", path});
        QCOMPARE(plain.code, 0);
        QCOMPARE(lower.code, 0);
        const QList<QByteArray> lines = plain.out.trimmed().split('\n');
        QCOMPARE(lines.size(), 14 + 1 + 1);
        QCOMPARE(QJsonDocument::fromJson(lines[14]).object()["kind"].toString(), "av-transmitter");
        const double floor = QJsonDocument::fromJson(lines.last()).object()["noise_floor_dbm"].toDouble();
        const double shifted = QJsonDocument::fromJson(lower.out.trimmed().split('\n').last()).object()["noise_floor_dbm"].toDouble();
        QVERIFY(std::fabs(floor + 95) < 2);
        QVERIFY(std::fabs(shifted - (floor - 10)) < 0.3);
        const Run text = analyze({path});
        QCOMPARE(text.code, 0);
        QVERIFY(text.out.startsWith("2.4 GHz band: 200 sweeps"));
        QVERIFY(text.out.contains("av-transmitter"));
    }
};

QTEST_GUILESS_MAIN(TestAnalysisOffline)
#include "tst_analysis_offline.moc"
