// The two stream readers in-process, the analyzer's records and the front-end's frames: whole
// records and frames in pieces of any size, each kind of damage with what it costs, garbage in
// between, nothing a reader cannot trust handed on, and readers that do not share state.
#include <QtTest>
#include <cmath>
#include <cstring>
#include <vector>

#include "frontstream.h"
#include "recordreader.h"

using namespace wsa;

namespace
{

QByteArray recordBytes(char type, int count, int level)
{
    stSweep r;
    std::memset(&r, 0, sizeof r);
    r.type = type;
    r.num_samples = count;
    for (int i = 0; i < count && i < SA_MAX_SAMPLES; ++i)
        r.data[i] = level;
    return QByteArray(reinterpret_cast<const char*>(&r), SA_RECORD_SIZE);
}

QByteArray sweep(int level, int count = 423)
{
    return recordBytes(SA_MSG_SWEEP, count, level);
}

// A record reader with everything it hands on collected.
struct Collector {
    QList<int> levels; // data[1] of each sweep, the type's negative for other records
    QList<QByteArray> records;
    int impossibleLevels = 0; // levels handed on that no receiver reports
    QStringList damage;
    RecordReader reader{
        [this](const stSweep& r) {
            levels << (r.type == SA_MSG_SWEEP ? r.data[1] : -r.type);
            for (int i = 0; r.type == SA_MSG_SWEEP && i < r.num_samples; ++i)
                impossibleLevels += r.data[i] < kLowestLevelDbm || r.data[i] > kHighestLevelDbm;
            records << QByteArray(reinterpret_cast<const char*>(&r), SA_RECORD_SIZE);
        },
        [this](const RecordDamage& d) {
            static const char* kinds[] = {"unknown type", "bad count", "cut short", "cut samples",
                                          "bad level"};
            damage << QString("%1 %2 %3").arg(kinds[d.kind]).arg(d.type).arg(d.count);
        }};

    // Feeds `bytes` in pieces of the given sizes (cycled), as a socket may deliver them.
    void feed(const QByteArray& bytes, const std::vector<int>& pieces = {SA_RECORD_SIZE})
    {
        size_t at = 0;
        for (size_t k = 0; at < size_t(bytes.size()); ++k) {
            size_t piece = std::min(size_t(pieces[k % pieces.size()]), size_t(bytes.size()) - at);
            while (piece > 0) {
                const size_t taken = reader.feed(bytes.constData() + at, piece);
                at += taken;
                piece -= taken;
            }
        }
    }
};

// Everything a frame reader handed out, in order, as text.
struct FrameLog {
    QStringList events;
    FrameReader reader{{
        [this](const ConfiguredFrame& f) {
            events << QString::asprintf("configured %.1f %.3f %d %d %s", f.firstHz, f.stepHz,
                                        f.bins, f.band, f.source.c_str());
        },
        [this](const SweepFrame& s) {
            events << QString::asprintf("sweep %g %d %g %g", s.seconds, s.bins,
                                        s.bins ? s.dbm[0] : 0, s.bins ? s.dbm[s.bins - 1] : 0);
        },
        [this](StatusCode c, const std::string& text) {
            events << QString::asprintf("status %d %s", int(c), text.c_str());
        },
        [this](const std::string& json) { events << "analysis " + QString::fromStdString(json); },
        [this](std::int64_t bytes, const std::string& path) {
            events << QString::asprintf("recording %lld %s", (long long)bytes, path.c_str());
        },
        [this](const char* what) { events << QString("damage ") + what; },
        [this](const ReplayFrame& r) {
            events << QString::asprintf("replay %g/%g x%g %d %d", r.position, r.duration, r.speed,
                                        r.paused, r.loop);
        },
        [this](ControlCommand c, double v) {
            events << QString::asprintf("control %d %g", int(c), v);
        },
    }};
};

// One frame of every kind, and the events they must give.
std::vector<char> sampleFrames(QStringList& expected)
{
    std::vector<char> out;
    encodeConfigured(out, {2400e6, 212765.957, 423, 0, "sim"});
    expected << "configured 2400000000.0 212765.957 423 0 sim";
    std::vector<float> levels(423);
    for (int k = 0; k < 3; ++k) {
        for (int i = 0; i < 423; ++i)
            levels[i] = -95.5f + i % 7 + k;
        encodeSweep(out, 0.125 * k, levels.data(), 423);
        expected << QString::asprintf("sweep %g 423 %g %g", 0.125 * k, -95.5 + k, levels[422]);
    }
    encodeStatus(out, StatusCode::ProgramMissing, "hackrf_sweep: not found");
    expected << "status 1 hackrf_sweep: not found";
    encodeAnalysis(out, R"({"type":"summary","sweeps":3})");
    expected << R"(analysis {"type":"summary","sweeps":3})";
    encodeRecording(out, 123456789012LL, "/tmp/rec ording.csv");
    expected << "recording 123456789012 /tmp/rec ording.csv";
    encodeReplay(out, {12.5, 3600, 4, true, false});
    expected << "replay 12.5/3600 x4 1 0";
    encodeControl(out, ControlCommand::Seek, 42.25);
    expected << "control 3 42.25";
    return out;
}

} // namespace

class TestReaders : public QObject
{
    Q_OBJECT

private slots:
    // Whole records of every kind pass unchanged; each damaged stretch costs the damaged bytes
    // only and is reported once; in pieces of any size.
    void records_data()
    {
        QTest::addColumn<QByteArray>("middle");
        QTest::addColumn<QList<int>>("extra"); // what the middle itself hands on
        QTest::addColumn<QString>("report");
        QTest::newRow("whole records")
            << recordBytes(SA_MSG_CONFIGURED, 423, 2400) + sweep(-50, SA_MAX_SAMPLES) +
                   sweep(-51, 0) + recordBytes(SA_MSG_DISCONNECT, 0, 0)
            << QList<int>({-SA_MSG_CONFIGURED, -50, 0, -SA_MSG_DISCONNECT}) << "";
        QTest::newRow("unknown type")
            << recordBytes('z', 423, -70) << QList<int>{} << "unknown type 122 423";
        QTest::newRow("sweep count above the record")
            << sweep(-70, 5000) << QList<int>{} << "bad count 101 5000";
        QTest::newRow("negative count")
            << recordBytes(SA_MSG_CONFIGURED, -3, 0) << QList<int>{} << "bad count 102 -3";
        QTest::newRow("garbage") << QByteArray(3000, char(0xa5)) << QList<int>{}
                                 << "unknown type -91 -1515870811";
        QTest::newRow("unknown type cut short")
            << recordBytes('z', 423, -70).left(100) << QList<int>{} << "unknown type 122 423";
        // The next record begins in the unused part of a sweep cut short: that sweep ends there.
        QTest::newRow("sweep cut in its unused part")
            << sweep(-70).left(SA_RECORD_SIZE / 2) << QList<int>{-70} << "";
        // A record start inside the header: the bytes before it are dropped.
        QTest::newRow("cut inside a header")
            << sweep(-70).left(4) << QList<int>{} << "cut short 101 101";
        QTest::newRow("cut inside a header, count out of range")
            << sweep(-70).left(3) << QList<int>{} << "bad count 101 -1493172224";
        QTest::newRow("stray bytes")
            << QByteArray("\x01\x02", 2) << QList<int>{} << "unknown type 1 27721728";
    }
    void records()
    {
        QFETCH(QByteArray, middle);
        QFETCH(QList<int>, extra);
        QFETCH(QString, report);
        const std::vector<int> splits[] = {
            {SA_RECORD_SIZE}, {1}, {1000, 1, 4104}, {7, 4100, 3, 9000, 1}, {5, 4099}};
        for (const std::vector<int>& pieces : splits) {
            Collector c;
            c.feed(sweep(-40) + middle + sweep(-41) + sweep(-42) + sweep(-43), pieces);
            QCOMPARE(c.levels, QList<int>{-40} + extra + QList<int>({-41, -42, -43}));
            QCOMPARE(c.damage, report.isEmpty() ? QStringList() : QStringList(report));
            QVERIFY(!c.reader.resynchronising());
            QCOMPARE(c.reader.pendingBytes(), size_t(0));
            // Whole records come out byte for byte.
            for (int k = 0; middle.size() % SA_RECORD_SIZE == 0 && k < extra.size(); ++k)
                QCOMPARE(c.records.value(1 + k), middle.mid(k * SA_RECORD_SIZE, SA_RECORD_SIZE));
        }
    }

    // A sweep cut inside its levels is followed at once by the next record, whose header lands
    // where levels should be: the cut sweep is never handed on, whatever the offset of the cut,
    // and the next record is. A cut past the levels (into the unused part) keeps the sweep.
    void sweepCutInsideItsLevels_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("cut");
        QTest::addColumn<bool>("paddedWithOnes"); // the next record's padding bytes not zero
        for (const int count : {423, int(SA_MAX_SAMPLES)})
            for (const int cut : {8, 9, 10, 11, 12, 100, 501, 998, 1003, 1699, 1700, 2052, 4000})
                for (const bool ones : {false, true})
                    QTest::addRow("%d levels, cut at %d%s", count, cut, ones ? ", padding" : "")
                        << count << cut << ones;
    }
    void sweepCutInsideItsLevels()
    {
        QFETCH(int, count);
        QFETCH(int, cut);
        QFETCH(bool, paddedWithOnes);
        Collector c;
        QByteArray next = sweep(-41, count);
        if (paddedWithOnes)
            next[1] = next[2] = next[3] = char(0xff);
        c.feed(sweep(-40, count) + sweep(-70, count).left(cut) + next + sweep(-42, count),
               {SA_RECORD_SIZE, 3, 700});
        const bool kept = cut >= 8 + 4 * count;
        QCOMPARE(c.levels, QList<int>{-40} + (kept ? QList<int>{-70} : QList<int>{}) +
                               QList<int>({-41, -42}));
        QCOMPARE(c.damage,
                 kept ? QStringList() : QStringList("cut samples 101 " + QString::number(count)));
        QCOMPARE(c.impossibleLevels, 0);
    }

    // A whole sweep with a level no receiver reports is dropped, and only it.
    void impossibleLevel_data()
    {
        QTest::addColumn<int>("level");
        QTest::newRow("above") << kHighestLevelDbm + 1;
        QTest::newRow("below") << kLowestLevelDbm - 1;
        QTest::newRow("INT_MIN") << int(0x80000000);
    }
    void impossibleLevel()
    {
        QFETCH(int, level);
        Collector c;
        QByteArray bad = sweep(-70);
        std::memcpy(bad.data() + 8 + 4 * 200, &level, sizeof level);
        QByteArray edge = sweep(kLowestLevelDbm);
        std::memcpy(edge.data() + 8 + 4 * 7, "\x32\0\0\0", 4); // kHighestLevelDbm
        c.feed(sweep(-40) + bad + edge + sweep(-42), {5000, 1});
        QCOMPARE(c.levels, QList<int>({-40, kLowestLevelDbm, -42}));
        QCOMPARE(c.damage, QStringList(QString("bad level 101 423")));
    }

    // Random garbage of random length between sweeps, in random pieces: every sweep arrives once,
    // in order; each stretch is reported at most once.
    void randomGarbage()
    {
        QRandomGenerator rng(7);
        Collector c;
        QByteArray stream;
        QList<int> sent;
        for (int k = 0; k < 60; ++k) {
            QByteArray garbage(int(rng.bounded(1, 6000)), Qt::Uninitialized);
            for (char& b : garbage)
                b = char(rng.bounded(256));
            sent << -20 - k;
            stream += garbage + sweep(sent.last());
        }
        std::vector<int> pieces;
        for (int k = 0; k < 50; ++k)
            pieces.push_back(int(rng.bounded(1, 9000)));
        c.feed(stream, pieces);
        QCOMPARE(c.levels, sent);
        QVERIFY(c.damage.size() <= 60);
    }

    // Two readers in one process keep their own partial records and damage state.
    void readersAreIndependent()
    {
        Collector a, b;
        const QByteArray sa = sweep(-50), sb = sweep(-60);
        a.feed(QByteArray(10, 'x'));
        b.feed(sb.left(2000));
        a.feed(sa);
        b.feed(sb.mid(2000));
        QCOMPARE(a.levels, QList<int>{-50});
        QCOMPARE(b.levels, QList<int>{-60});
        QCOMPARE(a.damage.size() + b.damage.size(), 1);
        // A reset forgets the partial record: a new connection starts on a boundary.
        a.feed(sa.left(100));
        a.reader.reset();
        a.feed(sweep(-51));
        QCOMPARE(a.levels, QList<int>({-50, -51}));
        QCOMPARE(a.reader.pendingBytes(), size_t(0));
    }

    // Frames survive any split of the stream, and damage costs only the damaged stretch: garbage
    // between frames, a header claiming a huge payload, a sweep whose count disagrees with its
    // length or that carries a level no receiver measures are each reported once and the frames
    // around them arrive intact. Frames of a kind no reader knows are skipped whole, even when
    // their payload looks like a start.
    void framesLoseOnlyTheDamagedStretch()
    {
        QStringList expected;
        const std::vector<char> good = sampleFrames(expected);
        std::vector<char> stream = good;
        const char garbage[] = "WW2\x01garbage W2\x02\x00\xff\xff\xff\x7f";
        stream.insert(stream.end(), garbage, garbage + sizeof garbage - 1);
        float nan = std::nanf("");
        encodeSweep(stream, 1.0, &nan, 1);
        std::vector<float> loud(4, 500.0f);
        encodeSweep(stream, 1.0, loud.data(), 4);
        encodeSweep(stream, 1.0, loud.data(), 4);
        stream[stream.size() - 4 * 4 - 4] = 9; // claims 9 bins in a payload of 4
        stream.insert(stream.end(), good.begin(), good.end());
        const char unknown[] = {'W', '2', 42, 0, 3, 0, 0, 0, 'W', '2', 'x'};
        stream.insert(stream.end(), unknown, unknown + sizeof unknown);
        encodeStatus(stream, StatusCode::Ended, "");
        const QStringList want =
            expected + QStringList("damage bad frame header") + expected + QStringList("status 0 ");
        // Every alignment of small pieces (a damaged stretch may end anywhere inside one), frames
        // whole in a piece, and the stream at once.
        std::vector<std::size_t> pieces = {900, stream.size()};
        for (std::size_t piece = 1; piece <= 17; ++piece)
            pieces.push_back(piece);
        for (std::size_t piece : pieces) {
            FrameLog log;
            for (std::size_t at = 0; at < stream.size(); at += piece)
                log.reader.feed(stream.data() + at, std::min(piece, stream.size() - at));
            QCOMPARE(log.events, want);
            QCOMPARE(log.reader.pending(), std::size_t(0));
        }
    }

    void frameEncodersRefuseWhatNoReaderTakes()
    {
        std::vector<char> out;
        std::vector<float> wide(kMaxStreamBins + 1, -90.0f);
        QVERIFY(!encodeSweep(out, 0, wide.data(), kMaxStreamBins + 1));
        QVERIFY(!encodeSweep(out, 0, wide.data(), -1));
        QVERIFY(!encodeAnalysis(out, std::string(kMaxFramePayload + 1, 'x')));
        QVERIFY(out.empty());
        QVERIFY(encodeSweep(out, 0, wide.data(), kMaxStreamBins));
        FrameLog log;
        log.reader.feed(out.data(), out.size());
        QCOMPARE(log.events.size(), 1);
    }
};

QTEST_APPLESS_MAIN(TestReaders)
#include "tst_readers.moc"
