// The instrument window's cost while it takes every sweep the simulated probe offers: the
// desktop program runs offscreen for a warm-up and a measured stretch, and its share of one core
// (and its engine's) is read from /proc. Arguments: [seconds] [sweeps per second] [program].
// WSA_ENGINE_PATH chooses another engine (the link test's stand-in with STANDIN_MODE=stream).
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <cstdio>
#include <unistd.h>

namespace
{

// utime + stime of a process in clock ticks; -1 when it is gone.
long long cpuTicks(qint64 pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (pid <= 0 || !stat.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray text = stat.readAll();
    const QList<QByteArray> f = text.mid(text.lastIndexOf(')') + 2).split(' ');
    return f.size() > 12 ? f[11].toLongLong() + f[12].toLongLong() : -1;
}

// The first child of pid (the engine the window started), or 0.
qint64 childOf(qint64 pid)
{
    QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(pid));
    if (!children.open(QIODevice::ReadOnly))
        return 0;
    return children.readAll().split(' ').value(0).toLongLong();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int seconds = args.size() > 1 ? args[1].toInt() : 20;
    const QString rate = args.size() > 2 ? args[2] : QStringLiteral("100");
    const QString program =
        args.size() > 3 ? args[3]
                        : QFileInfo(WSA_ENGINE_BIN).dir().filePath("../apps/wsa-desktop-variant");
    QTemporaryDir home;
    QDir().mkpath(home.filePath("run"));
    QFile::setPermissions(home.filePath("run"),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    env.insert("HOME", home.path());
    env.insert("XDG_RUNTIME_DIR", home.filePath("run"));
    env.insert("XDG_CONFIG_HOME", home.filePath("config"));
    if (!env.contains("WSA_ENGINE_PATH"))
        env.insert("WSA_ENGINE_PATH", WSA_ENGINE_BIN);
    env.insert("WSA_OUTPUT_RATE", rate);
    // The probe sweeps as fast as the window is offered sweeps, with emitters for the analysis
    // to name, so that every stage of a real session is in the figure.
    env.insert("WSA_SIM_RATE", rate);
    if (!env.contains("WSA_SIM_SCENE"))
        env.insert("WSA_SIM_SCENE", "emitters");
    QProcess wsa;
    wsa.setProcessEnvironment(env);
    wsa.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    wsa.start(program, {"--source", "sim", "--no-record"});
    if (!wsa.waitForStarted(5000)) {
        std::fprintf(stderr, "bench_window_cpu: cannot start %s\n", qPrintable(program));
        return 1;
    }
    QThread::sleep(3); // the engine starts and the store fills
    const qint64 window = wsa.processId(), engine = childOf(window);
    const long long w0 = cpuTicks(window), e0 = cpuTicks(engine);
    QThread::sleep(seconds);
    const long long w1 = cpuTicks(window), e1 = cpuTicks(engine);
    wsa.terminate();
    wsa.waitForFinished(10000);
    if (w0 < 0 || w1 < 0) {
        std::fprintf(stderr, "bench_window_cpu: the window ended early\n");
        return 1;
    }
    const double tick = double(sysconf(_SC_CLK_TCK));
    std::printf("window at %s sweeps/s offered, %d s: %.1f %% of one core\n", qPrintable(rate),
                seconds, 100.0 * double(w1 - w0) / tick / seconds);
    if (e0 >= 0 && e1 >= 0)
        std::printf("its engine: %.1f %% of one core\n", 100.0 * double(e1 - e0) / tick / seconds);
    else
        std::printf("its engine: not running (an engine without the front socket?)\n");
    return 0;
}
