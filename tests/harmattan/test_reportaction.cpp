#include "connectionmanager.h"
#include "reportviewmodel.h"
#include "navigationmodel.h"
#include "uiharness.h"
#include "zarvane.h"

#include <QFile>
#include <QQmlContext>
#include <QQuickItem>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using ReportActionTest = SimUiTest;

TEST_F(ReportActionTest, SaveReportWritesTheVehiclesPageOrSaysWhyNot)
{
    struct Row { const char *name, *profile; bool folderIsFile; };
    const Row rows[] = {
        { "CAN page in the reports folder", "can11", false },
        { "K-line page in the reports folder", "kwp", false },
        { "folder that cannot be made", "can11", true },
    };
    auto* model = qobject_cast<Harmattan::ReportViewModel*>(
        ui->view().rootContext()->contextProperty("reportViewModel").value<QObject*>());
    ASSERT_NE(model, nullptr);
    QObject* page = ui->open(Harmattan::NavigationModel::InformationView);
    auto* reportRow = page->findChild<QQuickItem*>("reportRow");
    ASSERT_NE(reportRow, nullptr);
    QString error;
    int saves = 0;
    QObject::connect(model, &Harmattan::ReportViewModel::saved, [&](const QString&, const QString& why) {
        error = why;
        ++saves;
    });
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_FALSE(reportRow->isEnabled());
        EXPECT_EQ(reportRow->property("subtitle").toString(), "Not connected");
        QTemporaryDir dir;
        QString folder = dir.path() + "/reports";
        if (row.folderIsFile) {
            QFile blocker(folder);
            ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
            folder += "/inside";
        }
        model->setFolder(folder);
        ASSERT_TRUE(connectToSim(options(row.profile)));
        ASSERT_TRUE(ui->settle());
        const int before = saves;
        ASSERT_TRUE(ui->tap(reportRow));
        ASSERT_TRUE(waitUntil([&] { return saves > before; }, READ_WAIT_MS));
        const QString banner = ui->banner()->property("text").toString();
        if (row.folderIsFile) {
            EXPECT_TRUE(error.startsWith("cannot write " + folder)) << error.toStdString();
            EXPECT_EQ(banner, "Report not saved: " + error);
        } else {
            ASSERT_TRUE(error.isEmpty()) << error.toStdString();
            const QString path = model->lastPath();
            EXPECT_TRUE(path.startsWith(folder + "/report-")) << path.toStdString();
            EXPECT_EQ(banner, "Report saved: " + path);
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const QString html = QString::fromUtf8(file.readAll());
            const ElmSim::EcuProfile& first = sim->profile().ecus.front();
            EXPECT_TRUE(html.contains(QString::fromStdString(first.vin))) << first.vin;
            for (const QString& code : simCodes(true))
                EXPECT_TRUE(html.contains("<code>" + code + "</code>")) << code.toStdString();
            EXPECT_TRUE(ui->banner()->property("shown").toBool());
            if (UiHarness::picturesWanted()) {
                waitUntil([&] { return ui->banner()->property("opacity").toDouble() >= 1.0; }, READ_WAIT_MS);
                ui->picture(QString("report_saved_") + row.profile);
                QFile::copy(path, qEnvironmentVariable("ZARVANE_SCREENSHOTS") + "/report_" + row.profile + ".html");
            }
        }
        ui->app()->connectionManager()->closeConnection();
        ASSERT_TRUE(waitUntil([&] { return !model->isConnected(); }, READ_WAIT_MS));
        ASSERT_TRUE(ui->settle());
    }
}
