// The analysis as JSON Lines: the fields every consumer relies on, one channel line per 20 MHz
// channel, the summary last, and nothing a JSON parser would refuse.
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <cmath>
#include <limits>

#include "jsonl.h"
#include "textreport.h"
#include "world.h"

namespace
{

QJsonObject parse(const std::string& line)
{
    QJsonParseError error{};
    const QJsonDocument doc = QJsonDocument::fromJson(QByteArray::fromStdString(line), &error);
    if (error.error != QJsonParseError::NoError || !doc.isObject())
        qWarning("not JSON: %s", line.c_str());
    return doc.object();
}

} // namespace

class TestAnalysisOutput : public QObject
{
    Q_OBJECT

private slots:
    void kindWordsRoundTrip()
    {
        for (int k = 0; k < wsa::kEmitterKindCount; ++k) {
            wsa::EmitterKind back = wsa::EmitterKind::Unknown;
            QVERIFY(wsa::kindFromName(wsa::kindName(wsa::EmitterKind(k)), &back));
            QCOMPARE(int(back), k);
        }
        wsa::EmitterKind untouched = wsa::EmitterKind::Zigbee;
        QVERIFY(!wsa::kindFromName("wifi", &untouched));
        QCOMPARE(int(untouched), int(wsa::EmitterKind::Zigbee));
        QCOMPARE(wsa::kindName(wsa::EmitterKind(99)), "unknown");
    }

    void wholeAnalysisAsLines()
    {
        const wsa::Band& band = *wsa::findBand("2g4");
        wsa::TruthEmitter video;
        video.kind = wsa::EmitterKind::AvTransmitter;
        video.centerMHz = 2450;
        video.widthMHz = 18;
        video.stopS = 1e9;
        video.levelDbm = -65;
        wsa::World world(band, 3, {video});
        wsa::Analyzer analyzer(band);
        std::vector<float> s(423);
        for (int k = 0; k < 100; ++k) {
            world.sweep(k * 0.05, s.data());
            analyzer.take(s.data(), 423, 100 + k * 0.05); // times need not start at zero
        }
        const QStringList lines = QString::fromStdString(wsa::analysisJsonLines(analyzer)).split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 14 + 1 + 1);
        for (int k = 0; k < 14; ++k) {
            const QJsonObject c = parse(lines[k].toStdString());
            QCOMPARE(c["type"].toString(), "channel");
            QCOMPARE(c["band"].toString(), "2g4");
            QCOMPARE(c["channel"].toInt(), k + 1);
            QCOMPARE(c["width_mhz"].toInt(), 20);
            QCOMPARE(c["center_mhz"].toDouble(), k == 13 ? 2484.0 : 2412.0 + 5 * k);
            QVERIFY(c["occupancy"].toDouble() >= 0 && c["occupancy"].toDouble() <= 1);
            QVERIFY(c["max_dbm"].toDouble() >= c["mean_dbm"].toDouble());
        }
        QVERIFY(parse(lines[8].toStdString())["occupancy"].toDouble() > 0.5); // 2447 MHz, under the video
        const QJsonObject e = parse(lines[14].toStdString());
        QCOMPARE(e["type"].toString(), "emitter");
        QCOMPARE(e["kind"].toString(), "av-transmitter");
        QVERIFY(e["channel"].isNull());
        QVERIFY(std::fabs(e["center_mhz"].toDouble() - 2450) < 2);
        QVERIFY(e["first_s"].toDouble() < 2 && e["last_s"].toDouble() <= 5);
        QVERIFY(e["confidence"].toDouble() > 0.5 && e["confidence"].toDouble() <= 1);
        QVERIFY(e["features"].toObject().contains("flatness_db"));
        for (const char* field : {"width_mhz", "duty", "peak_dbm"})
            QVERIFY(e[field].isDouble());
        const QJsonObject sum = parse(lines[15].toStdString());
        QCOMPARE(sum["type"].toString(), "summary");
        QCOMPARE(sum["sweeps"].toInt(), 100);
        QCOMPARE(sum["seconds"].toDouble(), 5.0);
        QVERIFY(std::fabs(sum["noise_floor_dbm"].toDouble() + 95) < 2);
    }

    void textReportForPeople()
    {
        const wsa::Band& band = *wsa::findBand("5g");
        wsa::Analyzer analyzer(band);
        const QString empty = QString::fromStdString(wsa::textReport(analyzer));
        QVERIFY(empty.startsWith("5 GHz band: 0 sweeps"));
        QVERIFY(empty.endsWith("no emitters\n"));
        wsa::TruthEmitter link;
        link.kind = wsa::EmitterKind::FixedWireless;
        link.centerMHz = 5300;
        link.widthMHz = 20;
        link.stopS = 3;
        link.levelDbm = -70;
        wsa::World world(band, 9, {link});
        std::vector<float> s(std::size_t(world.bins()));
        for (int k = 0; k < 120; ++k) {
            world.sweep(k * 0.05, s.data());
            analyzer.take(s.data(), world.bins(), k * 0.05);
        }
        const QStringList lines = QString::fromStdString(wsa::textReport(analyzer)).split('\n', Qt::SkipEmptyParts);
        const int channels = int(analyzer.channels(20).size());
        QCOMPARE(lines.size(), 2 + channels + 2);
        QVERIFY(lines[2].trimmed().startsWith("36 "));
        QVERIFY(lines[2 + channels].startsWith("emitters"));
        QVERIFY(lines.last().startsWith("fixed-wireless"));
        QVERIFY(lines.last().contains("continuity"));
    }

    void numbersJsonCannotHoldBecomeNull()
    {
        wsa::EmitterReport r;
        r.kind = wsa::EmitterKind::WifiOfdm;
        r.channel = 36;
        r.peakDbm = -std::numeric_limits<double>::infinity();
        r.duty = std::numeric_limits<double>::quiet_NaN();
        r.features[0] = {"edge_error_mhz", std::numeric_limits<double>::quiet_NaN()};
        r.featureCount = 1;
        const QJsonObject e = parse(wsa::emitterJson(r));
        QCOMPARE(e["channel"].toInt(), 36);
        QVERIFY(e["peak_dbm"].isNull());
        QVERIFY(e["duty"].isNull());
        QVERIFY(e["features"].toObject()["edge_error_mhz"].isNull());
        const QJsonObject empty = parse(wsa::summaryJson(0, 0, 0));
        QCOMPARE(empty["sweeps"].toInt(), 0);
        QVERIFY(empty["noise_floor_dbm"].isNull());
    }
};

QTEST_GUILESS_MAIN(TestAnalysisOutput)
#include "tst_analysis_output.moc"
