#include "logcapture.h"
#include "trlog.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    app.setApplicationName("Zarvane");
    app.setOrganizationName("Quillot");
    app.setOrganizationDomain("quillot.org");
    Obd::TrLog::addLogger(&LogCapture::instance());
    if (std::getenv("ZARVANE_TEST_LOG"))
        LogCapture::instance().setEcho(true);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
