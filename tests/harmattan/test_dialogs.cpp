#include "uiharness.h"
#include "zrvinfo.h"
#include "zrvquery.h"

#include <QMetaObject>

#include <gtest/gtest.h>

using DialogTest = UiTest;

TEST_F(DialogTest, BannerShowsTheNoticeAndHidesItselfAfterItsTimeout)
{
    {
        Obd::ZrvInfo info("Adapter found");
        info.setIconSource("qrc:///link.png");
        info.setTimeout(400);
        info.show();
    }
    QObject* banner = ui->banner();
    EXPECT_EQ(banner->property("text").toString(), "Adapter found");
    EXPECT_EQ(banner->property("iconSource").toString(), "qrc:///link.png");
    EXPECT_TRUE(waitUntil([&] { return banner->property("visible").toBool(); }, 2000));
    ui->picture("banner");
    EXPECT_TRUE(waitUntil([&] { return !banner->property("visible").toBool(); }, 5000))
        << "the banner did not hide itself";
}

TEST_F(DialogTest, OnlyTheQueryShownLastHearsTheAnswerAndOnlyOnce)
{
    Obd::ZrvQuery first;
    Obd::ZrvQuery second;
    first.setTitle("First");
    second.setTitle("Second");
    second.setText("Clear all trouble codes?");
    second.setButtonTexts("Yes", "No");
    int firstAccepted = 0, firstRejected = 0, secondAccepted = 0, secondRejected = 0;
    QObject::connect(&first, &Obd::ZrvQuery::accepted, [&] { ++firstAccepted; });
    QObject::connect(&first, &Obd::ZrvQuery::rejected, [&] { ++firstRejected; });
    QObject::connect(&second, &Obd::ZrvQuery::accepted, [&] { ++secondAccepted; });
    QObject::connect(&second, &Obd::ZrvQuery::rejected, [&] { ++secondRejected; });
    QObject* dialog = ui->dialog();

    first.show();
    second.show();
    EXPECT_EQ(dialog->property("titleText").toString(), "Second");
    EXPECT_EQ(dialog->property("message").toString(), "Clear all trouble codes?");
    EXPECT_EQ(ui->text(dialog, "acceptButton"), "Yes");
    EXPECT_EQ(ui->text(dialog, "rejectButton"), "No");
    ui->picture("query_dialog");
    ASSERT_TRUE(ui->tap(dialog, "acceptButton"));
    EXPECT_EQ(secondAccepted, 1);
    EXPECT_EQ(firstAccepted, 0);
    EXPECT_FALSE(dialog->property("visible").toBool());

    // Shown twice, answered once.
    first.show();
    first.show();
    ASSERT_TRUE(ui->tap(dialog, "rejectButton"));
    EXPECT_EQ(firstRejected, 1);
    for (const char* answer : { "reject", "accept" })
        QMetaObject::invokeMethod(dialog, answer);
    EXPECT_EQ(firstRejected, 1) << "an answered query hears no later answer";
    EXPECT_EQ(firstAccepted + secondAccepted + secondRejected, 1);
}
