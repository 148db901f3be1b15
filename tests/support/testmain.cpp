#include "logcapture.h"
#include "trlog.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    Obd::TrLog::addLogger(&LogCapture::instance());
    if (std::getenv("ZARVANE_TEST_LOG"))
        LogCapture::instance().setEcho(true);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
