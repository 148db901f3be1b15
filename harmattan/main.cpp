#include "connectionmanager.h"
#include "consolelogger.h"
#include "libobd.h"
#include "trlog.h"
#include "zarvane.h"

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>

#include <csignal>

int main(int argc, char** argv)
{
    // A link that dies under a write must give an error, not end the application.
    std::signal(SIGPIPE, SIG_IGN);

    QGuiApplication app(argc, argv);
    app.setApplicationName("Zarvane");
    app.setOrganizationName("Quillot");
    app.setOrganizationDomain("quillot.org");
    app.setApplicationVersion(ZARVANE_VERSION);

    static Obd::ConsoleLogger logger;
    Obd::TrLog::addLogger(&logger);
    Obd::libInit();

    Harmattan::Zarvane::registerQmlTypes();

    QQuickView view;
    QObject::connect(view.engine(), &QQmlEngine::quit, &view, &QWindow::close);
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setTitle("Zarvane");
    view.setSource(QUrl("qrc:/qml/main.qml"));
    if (view.status() != QQuickView::Ready || !view.rootObject()) {
        OBD_ERROR << "Cannot load the user interface";
        return 1;
    }

    Harmattan::Zarvane* zarvane = new Harmattan::Zarvane(view.rootObject(), view.rootContext());

    // A phone-sized portrait window, resizable.
    view.resize(480, 854);
    view.show();
    const int result = app.exec();

    delete zarvane;
    Obd::libCleanup();
    return result;
}
