// The band plan and the axes: channel plans that bond correctly, grids that match what the
// analyzer has always shown, and refusal of bands the plan does not know.
#include <QtTest>

#include <cmath>
#include <set>

#include "axis.h"
#include "bandplan.h"

using namespace wsa;

class TestBandPlan : public QObject
{
    Q_OBJECT

private slots:
    void channelPlans_data()
    {
        QTest::addColumn<QString>("band");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("count");
        QTest::addColumn<QList<double>>("ends"); // number and centre of the first and the last
        QTest::newRow("2.4/20") << "2g4" << 20 << 14 << QList<double>{1, 2412, 14, 2484};
        QTest::newRow("5/20") << "5g" << 20 << 28 << QList<double>{36, 5180, 177, 5885};
        QTest::newRow("5/40") << "5g" << 40 << 14 << QList<double>{38, 5190, 175, 5875};
        QTest::newRow("5/80") << "5g" << 80 << 7 << QList<double>{42, 5210, 171, 5855};
        QTest::newRow("5/160") << "5g" << 160 << 3 << QList<double>{50, 5250, 163, 5815};
        QTest::newRow("6/20") << "6g" << 20 << 59 << QList<double>{1, 5955, 233, 7115};
        QTest::newRow("6/40") << "6g" << 40 << 29 << QList<double>{3, 5965, 227, 7085};
        QTest::newRow("6/80") << "6g" << 80 << 14 << QList<double>{7, 5985, 215, 7025};
        QTest::newRow("6/160") << "6g" << 160 << 7 << QList<double>{15, 6025, 207, 6985};
        QTest::newRow("6/320") << "6g" << 320 << 6 << QList<double>{31, 6105, 191, 6905};
    }
    void channelPlans()
    {
        QFETCH(QString, band);
        QFETCH(int, width);
        QFETCH(int, count);
        QFETCH(QList<double>, ends);
        const Band* b = findBand(band.toStdString());
        QVERIFY(b);
        const std::vector<Channel>& ch = b->channels(width);
        QCOMPARE(int(ch.size()), count);
        QCOMPARE(QList<double>({double(ch.front().number), ch.front().centerMHz,
                                double(ch.back().number), ch.back().centerMHz}),
                 ends);
        for (const Channel& c : ch) {
            QCOMPARE(c.widthMHz, width);
            // Every channel lies inside its band's nominal range where the plan is used whole.
            if (b->id == BandId::Ghz6)
                QVERIFY(c.lowMHz() >= 5925 && c.highMHz() <= 7125);
        }
    }

    // Every bonded channel covers exactly a run of adjacent 20 MHz channels of the same plan, and
    // no two channels of one width overlap (320 MHz aside, whose two sets overlap by design).
    void bondedChannelsCoverTwentyMegahertzRuns()
    {
        for (const Band& b : allBands()) {
            const std::vector<Channel>& narrow = b.channels(20);
            for (int width : b.widthsMHz) {
                const std::vector<Channel>& ch = b.channels(width);
                QVERIFY2(!ch.empty(), b.key);
                for (std::size_t k = 0; k < ch.size(); ++k) {
                    const Channel& c = ch[k];
                    int covered = 0;
                    for (const Channel& n : narrow) {
                        if (n.lowMHz() >= c.lowMHz() - 1e-9 && n.highMHz() <= c.highMHz() + 1e-9)
                            ++covered;
                    }
                    QCOMPARE(covered * 20, width);
                    if (width != 320 && k > 0)
                        QVERIFY(ch[k - 1].highMHz() <= c.lowMHz() + 1e-9 || b.id == BandId::Ghz24);
                    QCOMPARE(b.channel(width, c.number), &ch[k]);
                }
            }
            QCOMPARE(b.channel(20, 999), nullptr);
            QVERIFY(b.channels(30).empty());
        }
    }

    // The grids produce what the analyzer has always been sent and shown.
    void gridsAndAnnouncements()
    {
        const Band& b24 = *findBand(BandId::Ghz24);
        const Band& b5 = *findBand(BandId::Ghz5);
        const Band& b6 = *findBand(BandId::Ghz6);
        QCOMPARE(QList<int>({b24.grid.shown, b24.grid.raw, b5.grid.shown, b5.grid.raw}),
                 QList<int>({423, 423, 904, 1024}));
        QVERIFY(b6.grid.raw <= 1024);
        for (const Band* b : {&b24, &b5, &b6}) {
            const SourceGrid& g = b->grid;
            QVERIFY(std::fabs(g.binHz(g.shown - 1) - g.endHz) < 1);
            QVERIFY(g.lowEdgeHz() >= b->lowHz - g.stepHz && g.highEdgeHz() <= b->highHz + g.stepHz);
        }
        const auto fields = [](const Announcement& a) {
            return QList<int>({a.startMHz, a.endMHz, a.stepKHz, a.samples});
        };
        QCOMPARE(fields(b5.gridAnnouncement()), QList<int>({5160, 5835, 748, 1024}));
        QCOMPARE(fields(b5.simAnnouncement), QList<int>({5160, 5924, 747, 1024}));
        QCOMPARE(fields(b24.simAnnouncement), QList<int>({2400, 2490, 213, 423}));
        QCOMPARE(QList<double>({b6.lowHz, b6.highHz}), QList<double>({5925e6, 7125e6}));
        QCOMPARE(b6.handheld, nullptr);
    }

    // What the handheld's views and readouts show of the mapping is checked on its screen; what
    // they cannot show: the 5 GHz readout's upper end and a grid of no width.
    void handheldMapping()
    {
        const HandheldMapping& m5 = *handheldBand(1).handheld;
        QCOMPARE(handheld::inspectorMHz(m5, 455, m5.gridWidth), 5835);
        QCOMPARE(handheld::inspectorMHz(m5, 10, 0), 5160);
    }

    // A band the plan does not know is refused with a console line, never taken for another.
    void unknownBandsRefused()
    {
        QCOMPARE(findBandIndex(3), nullptr);
        QCOMPARE(findBandIndex(-1), nullptr);
        QCOMPARE(findBand(std::string("7g")), nullptr);
        QCOMPARE(checkedBand(5, "test"), nullptr);
        QCOMPARE(checkedBand(std::string("x"), "test"), nullptr);
        std::set<std::string> keys;
        for (const Band& b : allBands())
            QVERIFY(keys.insert(b.key).second);
    }

    void axisRoundTrips()
    {
        for (const Band& b : allBands()) {
            const Axis axis(b.grid, 37.0, 1613.0);
            QCOMPARE(axis.columnOfHz(axis.lowHz()), 37.0);
            QVERIFY(std::fabs(axis.columnOfHz(axis.highHz()) - (37.0 + 1613.0)) < 1e-6);
            for (int bin : {0, 1, b.grid.shown / 2, b.grid.shown - 1}) {
                const double x = axis.columnOfBin(bin);
                QCOMPARE(axis.binOfColumn(x), bin);
                QCOMPARE(axis.nearestBin(axis.hzOfBin(bin) + b.grid.stepHz * 0.4), bin);
                QVERIFY(std::fabs(axis.hzOfColumn(x) - axis.hzOfBin(bin)) < 1e-3);
            }
            QCOMPARE(axis.binOfColumn(-1e9), 0);
            QCOMPARE(axis.binOfColumn(1e9), b.grid.shown - 1);
            QCOMPARE(axis.nearestBin(-1e12), 0);
        }
    }
};

QTEST_APPLESS_MAIN(TestBandPlan)
#include "tst_bandplan.moc"
