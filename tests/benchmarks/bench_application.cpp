// The application itself against an adapter on a TCP port: opens the
// connection the way the main screen does, then polls on the dashboard, and
// prints the time to connect, resident memory after discovery, the CPU the
// process uses while the dashboard polls, and the event loop's gaps meanwhile.
// Prints figures; asserts nothing.
//
// Usage: bench_application <port> [seconds of polling, default 10]

#include "connectionmanager.h"
#include "viewmodel/dashboardviewmodel.h"
#include "navigationmodel.h"
#include "settingsmodel.h"
#include "zarvane.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickView>
#include <QTemporaryDir>
#include <QTimer>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

// Runs the event loop (idle, not spinning) until the condition holds.
bool runUntil(const std::function<bool()>& condition, int timeoutMs)
{
    QEventLoop loop;
    QTimer check;
    QObject::connect(&check, &QTimer::timeout, [&] {
        if (condition())
            loop.quit();
    });
    check.start(20);
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    if (!condition())
        loop.exec();
    return condition();
}

void runFor(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

long residentKb()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmRSS:", 0) == 0)
            return std::strtol(line.c_str() + 6, nullptr, 10);
    }
    return -1;
}

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec
           + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: bench_application <port> [seconds]\n");
        return 2;
    }
    // A settings store of its own, so a user's settings are never touched.
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    app.setApplicationName("Zarvane");
    app.setOrganizationName("Quillot");
    const int seconds = argc > 2 ? std::atoi(argv[2]) : 10;

    Harmattan::Zarvane::registerQmlTypes();
    QQuickView view;
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setSource(QUrl("qrc:/qml/main.qml"));
    if (!view.rootObject())
        return 1;
    Harmattan::Zarvane zarvane(view.rootObject(), view.rootContext());
    view.resize(480, 854);
    view.show();
    runFor(500);

    Obd::SettingsModel* settings = zarvane.settingsModel();
    settings->setConnectionMethod(Obd::SettingsModel::CM_WIFI);
    settings->setIpAddress("127.0.0.1");
    settings->setIpPort(QString::fromLocal8Bit(argv[1]));
    Harmattan::ConnectionManager* manager = zarvane.connectionManager();
    QElapsedTimer opening;
    opening.start();
    if (!manager->openConnection() || !runUntil([&] { return manager->isConnected(); }, 60000)) {
        std::fprintf(stderr, "no connection to 127.0.0.1:%s\n", argv[1]);
        return 1;
    }
    std::printf("connected with discovery in %lld ms; VmRSS after discovery %ld kB\n",
                static_cast<long long>(opening.elapsed()), residentKb());

    zarvane.navigationModel()->activateView(Harmattan::NavigationModel::DashboardView);
    runFor(1500); // the start-up sweep of the needles, then polling
    Harmattan::DashboardViewModel* dashboard = zarvane.dashboardViewModel();
    const int requestsBefore = dashboard->requestCount();
    const double cpuBefore = cpuSeconds();
    QElapsedTimer wall;
    wall.start();
    runFor(seconds * 1000);
    const double cpu = cpuSeconds() - cpuBefore;
    const double elapsed = wall.elapsed() / 1000.0;
    std::printf("dashboard polling %.1f s: %d requests, CPU %.2f s (%.1f %% of one core), VmRSS %ld kB\n",
                elapsed, dashboard->requestCount() - requestsBefore, cpu, 100.0 * cpu / elapsed,
                residentKb());

    // The event loop's gaps while it polls, sampled with a 5 ms timer.
    std::vector<qint64> gaps;
    QElapsedTimer clock;
    clock.start();
    qint64 last = 0;
    QTimer probe;
    probe.setInterval(5);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        gaps.push_back(clock.elapsed() - last);
        last = clock.elapsed();
    });
    probe.start();
    runFor(5000);
    probe.stop();
    std::sort(gaps.begin(), gaps.end());
    if (!gaps.empty())
        std::printf("event loop while polling: median gap %lld ms, p95 %lld ms, longest %lld ms\n",
                    static_cast<long long>(gaps[gaps.size() / 2]),
                    static_cast<long long>(gaps[gaps.size() * 95 / 100]),
                    static_cast<long long>(gaps.back()));
    manager->closeConnection();
    return 0;
}
