// The record reader in-process: whole records in pieces of any size, each kind of damage with
// what it costs, garbage between records, and readers that do not share state.
#include <QtTest>
#include <cstring>
#include <vector>

#include "recordreader.h"

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

// A reader with everything it hands on collected.
struct Collector {
    QList<int> levels; // data[1] of each sweep, the type's negative for other records
    QList<QByteArray> records;
    int impossibleLevels = 0; // levels handed on that no receiver reports
    QStringList damage;
    wsa::RecordReader reader{
        [this](const stSweep& r) {
            levels << (r.type == SA_MSG_SWEEP ? r.data[1] : -r.type);
            for (int i = 0; r.type == SA_MSG_SWEEP && i < r.num_samples; ++i)
                impossibleLevels +=
                    r.data[i] < wsa::kLowestLevelDbm || r.data[i] > wsa::kHighestLevelDbm;
            records << QByteArray(reinterpret_cast<const char*>(&r), SA_RECORD_SIZE);
        },
        [this](const wsa::RecordDamage& d) {
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

} // namespace

class TestRecordReader : public QObject
{
    Q_OBJECT

private slots:
    // Whole records of every kind pass unchanged; each damaged stretch costs the damaged bytes
    // only and is reported once; in pieces of any size.
    void stream_data()
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
    void stream()
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
        QTest::newRow("above") << wsa::kHighestLevelDbm + 1;
        QTest::newRow("below") << wsa::kLowestLevelDbm - 1;
        QTest::newRow("INT_MIN") << int(0x80000000);
    }
    void impossibleLevel()
    {
        QFETCH(int, level);
        Collector c;
        QByteArray bad = sweep(-70);
        std::memcpy(bad.data() + 8 + 4 * 200, &level, sizeof level);
        QByteArray edge = sweep(wsa::kLowestLevelDbm);
        std::memcpy(edge.data() + 8 + 4 * 7, "\x32\0\0\0", 4); // kHighestLevelDbm
        c.feed(sweep(-40) + bad + edge + sweep(-42), {5000, 1});
        QCOMPARE(c.levels, QList<int>({-40, wsa::kLowestLevelDbm, -42}));
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
};

QTEST_APPLESS_MAIN(TestRecordReader)
#include "tst_recordreader.moc"
